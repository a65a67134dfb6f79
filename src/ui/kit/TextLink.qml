import QtQuick
import Velmora

// A line of text that can be pressed. It looks like any other until the pointer or the focus is on it.
Pressable {
    id: link

    required property Caption words

    label: words.text
    implicitWidth: words.implicitWidth
    implicitHeight: words.implicitHeight
    ringRadius: 7
    toolTipBelow: true
    Accessible.ignored: !enabled // then the words speak for themselves

    Rectangle {
        objectName: "underline"
        y: parent.height
        width: parent.width
        height: 1
        visible: link.enabled && (link.hovered || link.activeFocus)
        color: link.words.color
        opacity: 0.7
    }
}
