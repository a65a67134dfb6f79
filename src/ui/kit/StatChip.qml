import QtQuick
import Velmora

// A value with its name above it.
Item {
    id: chip

    required property string label
    required property string value
    required property color tint

    implicitWidth: rows.implicitWidth + 28
    implicitHeight: rows.implicitHeight + 22

    Plate {
        anchors.fill: parent
        fill: Neon.ink
        fillOpacity: 0.028
        border: chip.tint
        borderOpacity: 0.22
        radius: 9
    }

    Column {
        id: rows

        anchors.centerIn: parent
        spacing: 5

        Caption {
            text: chip.label
            size: 9
            weight: Font.Bold
            tracking: 1.5
            color: Neon.inkDim
        }

        Caption {
            text: chip.value
            size: 15
            weight: Font.DemiBold
            color: chip.tint
        }
    }
}
