import QtQuick
import Velmora

// A button of the title bar.
Pressable {
    id: button

    required property int sign

    width: 34
    height: 28
    ringRadius: 7
    ringInset: 2
    toolTip: label
    toolTipBelow: true

    Plate {
        anchors.fill: parent
        anchors.margins: 2
        fill: Neon.ink
        fillOpacity: 0.14
        radius: 7
        visible: button.down
    }

    TitleBarGlyph {
        anchors.fill: parent
        sign: button.sign
        color: button.hovered ? Neon.ink : Neon.inkDim
    }
}
