import QtQuick
import Velmora

// One file of the list.
Item {
    id: row

    required property int index
    required property string name
    required property int kind
    required property string size
    required property string date
    required property bool selected
    property bool current: false ///< the keyboard is here
    property bool faint: false
    property real sizeWidth: 90
    property real dateWidth: 150

    signal pressed(int modifiers)
    signal opened

    height: 26
    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.description: (size + "  " + date).trim()
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.onPressAction: row.pressed(0)

    Rectangle {
        anchors.fill: parent
        anchors.leftMargin: 3
        anchors.rightMargin: 3
        color: Neon.indigo
        opacity: row.selected ? 0.45 : 0.12
        visible: row.selected || pointer.containsMouse
    }

    Plate {
        anchors.fill: parent
        anchors.leftMargin: 2
        anchors.rightMargin: 2
        border: Neon.ink
        radius: 4
        visible: row.current
    }

    PanelGlyph {
        x: 10
        y: 5
        sign: row.kind
        color: row.selected ? Neon.ink : row.kind === PanelGlyph.Folder ? Neon.violet : Neon.inkDim
    }

    PanelText {
        x: 34
        width: row.width - x - row.sizeWidth - row.dateWidth
        height: parent.height
        elide: Text.ElideMiddle
        text: row.name
        opacity: row.faint ? 0.5 : 1
    }

    PanelText {
        x: row.width - row.sizeWidth - row.dateWidth
        width: row.sizeWidth - 8
        height: parent.height
        horizontalAlignment: Text.AlignRight
        text: row.size
        color: row.selected ? Neon.ink : Neon.inkDim
        font.pixelSize: 11
    }

    PanelText {
        x: row.width - row.dateWidth + 8
        width: row.dateWidth - 16
        height: parent.height
        text: row.date
        color: row.selected ? Neon.ink : Neon.inkDim
        font.pixelSize: 11
    }

    MouseArea {
        id: pointer

        anchors.fill: parent
        hoverEnabled: true
        onPressed: mouse => row.pressed(mouse.modifiers)
        onDoubleClicked: row.opened()
    }
}
