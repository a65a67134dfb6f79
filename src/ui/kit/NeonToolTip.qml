import QtQuick
import Velmora

// A short explanation beside a control on which the pointer rests.
Item {
    id: toolTip

    required property string text
    required property bool wanted

    implicitWidth: words.width + 20
    implicitHeight: words.implicitHeight + 10
    visible: false
    z: 1
    onWantedChanged: if (!wanted)
        visible = false
    onTextChanged: if (text === "")
        visible = false

    Timer {
        interval: 700
        running: toolTip.wanted && toolTip.text !== ""
        onTriggered: {
            // Its left edge is that of the control, unless it would not fit into the window.
            const start = toolTip.parent.mapToItem(null, 0, 0).x;
            toolTip.x = Math.min(0, toolTip.Window.width - 6 - toolTip.width - start);
            toolTip.visible = true;
        }
    }

    Plate {
        anchors.fill: parent
        fill: Neon.bgMid
        border: Neon.indigo
        borderOpacity: 0.5
        radius: 7
    }

    Caption {
        id: words

        anchors.centerIn: parent
        width: Math.min(implicitWidth, toolTip.Window.width - 32)
        text: toolTip.text
        size: 11
        color: Neon.ink
    }
}
