import QtQuick
import Velmora

// One command of the menu.
Pressable {
    id: row

    required property string title

    label: title
    width: parent ? parent.width : implicitWidth
    implicitWidth: words.implicitWidth + 28
    implicitHeight: words.implicitHeight + 14
    ringRadius: 6
    ringInset: 0
    Accessible.role: Accessible.MenuItem
    onHoveredChanged: if (hovered)
        forceActiveFocus(Qt.MouseFocusReason)

    Plate {
        anchors.fill: parent
        fill: Neon.indigo
        fillOpacity: row.down ? 0.6 : row.activeFocus ? 0.35 : 0
        radius: 6
    }

    PaintedText {
        id: words

        x: 14
        anchors.verticalCenter: parent.verticalCenter
        text: row.title
        size: 12
        weight: Font.Medium
    }
}
