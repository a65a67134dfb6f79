import QtQuick
import Velmora

// Where a list stands, at its right edge; pulled, it moves the list. Not to be seen where everything fits.
Item {
    id: bar

    required property Flickable flickable
    readonly property real room: flickable.contentHeight - flickable.height ///< points to scroll
    readonly property real track: height - thumb.height

    implicitWidth: 12
    visible: room > 0

    Plate {
        id: thumb

        anchors.horizontalCenter: parent.horizontalCenter
        y: bar.room > 0 ? bar.track * (bar.flickable.contentY - bar.flickable.originY) / bar.room : 0
        width: 6
        height: Math.max(28, bar.height * Math.min(1, bar.flickable.height / bar.flickable.contentHeight))
        fill: Neon.indigo
        fillOpacity: area.containsMouse || area.pressed ? 1 : 0.6
        capsule: true
    }

    MouseArea {
        id: area

        function pullTo(y) {
            const share = bar.track > 0 ? (y - thumb.height / 2) / bar.track : 0;
            bar.flickable.contentY = bar.flickable.originY + bar.room * Math.max(0, Math.min(1, share));
        }

        anchors.fill: parent
        hoverEnabled: true
        preventStealing: true
        onPressed: mouse => pullTo(mouse.y)
        onPositionChanged: mouse => {
            if (pressed)
                pullTo(mouse.y);
        }
    }
}
