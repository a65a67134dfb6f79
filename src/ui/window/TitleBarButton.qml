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

    TitleBarGlyph {
        anchors.fill: parent
        sign: button.sign
        color: button.hovered ? Neon.ink : Neon.inkDim
    }
}
