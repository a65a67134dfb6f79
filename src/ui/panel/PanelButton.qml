import QtQuick
import Velmora

// A small button of the panel: a sign, or words.
Pressable {
    id: button

    property int sign: -1
    property string title: ""
    property bool lit: false

    label: title
    implicitWidth: title === "" ? 30 : words.implicitWidth + 18
    implicitHeight: 28
    ringRadius: 7
    ringInset: 0
    opacity: enabled ? 1 : 0.35

    Plate {
        anchors.fill: parent
        fill: Neon.indigo
        fillOpacity: button.lit ? 0.35 : 0.18
        visible: button.lit || (button.hovered && button.enabled)
        radius: 7
    }

    PanelGlyph {
        anchors.centerIn: parent
        visible: button.sign >= 0
        sign: Math.max(button.sign, 0)
        color: button.hovered ? Neon.ink : Neon.inkDim
    }

    PanelText {
        id: words

        anchors.centerIn: parent
        text: button.title
        color: button.hovered || button.lit ? Neon.ink : Neon.inkDim
        font.weight: Font.Medium
    }
}
