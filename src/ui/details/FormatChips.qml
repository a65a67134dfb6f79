pragma ComponentBehavior: Bound

import QtQuick
import Velmora

// The longest file and the formats, side by side. The wheel moves them where there are more than fit.
ListView {
    id: chips

    orientation: ListView.Horizontal
    spacing: 8
    implicitHeight: 58
    clip: true
    pixelAligned: true
    boundsBehavior: Flickable.StopAtBounds
    currentIndex: -1

    delegate: StatChip {
        required property var modelData
        required property int index

        objectName: "detailsChip"
        height: chips.height
        label: modelData.label
        value: modelData.value
        tint: index === 0 ? Neon.violet : Neon.indigo
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.NoButton
        onWheel: wheel => {
            const room = Math.max(0, chips.contentWidth - chips.width);
            const moved = wheel.angleDelta.y + wheel.angleDelta.x;
            chips.contentX = chips.originX + Math.max(0, Math.min(room, chips.contentX - chips.originX - moved));
        }
    }
}
