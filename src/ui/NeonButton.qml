import QtQuick
import Velmora

Pressable {
    id: button

    required property string title
    required property color tint
    readonly property bool lit: hovered && enabled

    label: title
    implicitWidth: words.implicitWidth + 36
    implicitHeight: words.implicitHeight + 18
    opacity: enabled ? 1 : 0.4

    Plate {
        anchors.fill: parent
        fill: button.tint
        fillOpacity: button.lit ? 1 : 0.1
        border: button.tint
        borderOpacity: button.lit ? 1 : 0.5
        radius: 9
    }

    Caption {
        id: words

        anchors.centerIn: parent
        text: button.title
        size: 11
        weight: Font.Bold
        tracking: 1.6
        color: button.lit ? "black" : button.tint
        Accessible.ignored: true
    }
}
