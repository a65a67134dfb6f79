import QtQuick
import Velmora

Pressable {
    id: button

    required property string title
    required property color tint
    property string restingTitle: title ///< the button stays wide enough for it
    readonly property bool lit: hovered && enabled

    component Words: PaintedText {
        anchors.centerIn: parent
        size: 11
        weight: Font.Bold
        tracking: 1.6
    }

    label: title
    implicitWidth: Math.max(words.implicitWidth, room.implicitWidth) + 36
    implicitHeight: words.implicitHeight + 18
    opacity: enabled ? 1 : 0.4

    Plate {
        anchors.fill: parent
        fill: button.tint
        fillOpacity: button.down ? 0.7 : button.lit ? 1 : 0.1
        border: button.tint
        borderOpacity: button.lit ? 1 : 0.5
        radius: 9
    }

    Words {
        id: words

        text: button.title
        color: button.lit || button.down ? "black" : button.tint
    }

    Words {
        id: room

        visible: false
        text: button.restingTitle
    }
}
