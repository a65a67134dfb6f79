import QtQuick
import Velmora

// The name of a list, underlined while that list is shown.
Pressable {
    id: tab

    required property string title
    required property bool shown

    label: title
    implicitWidth: words.implicitWidth
    implicitHeight: 28
    ringRadius: 6
    Accessible.role: Accessible.PageTab
    Accessible.selected: shown

    Caption {
        id: words

        anchors.verticalCenter: parent.verticalCenter
        text: tab.title
        size: 11
        weight: Font.Bold
        tracking: 1.6
        color: tab.shown ? Neon.violet : tab.hovered ? Neon.ink : Neon.inkDim
        Accessible.ignored: true
    }

    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 2
        visible: tab.shown
        color: Neon.violet
    }
}
