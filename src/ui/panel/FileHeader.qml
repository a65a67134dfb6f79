import QtQuick
import Velmora

// The title of a column; pressing it sorts by the column.
Pressable {
    id: header

    required property FileList files
    required property int column
    required property string title
    property int alignment: Text.AlignLeft
    readonly property bool sorts: files.column === column

    label: "Sort by " + title.toLowerCase()
    implicitHeight: 26
    ringRadius: 6
    ringInset: 1
    onPressed: files.sortBy(column)

    PanelText {
        id: words

        x: 8
        width: parent.width - 16
        height: parent.height
        rightPadding: header.alignment === Text.AlignRight && header.sorts ? 14 : 0
        horizontalAlignment: header.alignment
        text: header.title
        color: header.sorts || header.hovered ? Neon.ink : Neon.inkDim
        font.pixelSize: 11
        font.weight: Font.DemiBold
    }

    PanelGlyph {
        x: header.alignment === Text.AlignRight ? parent.width - 8 - 12 : words.x + words.contentWidth + 4
        y: (parent.height - height) / 2
        width: 12
        visible: header.sorts
        sign: header.files.descending ? PanelGlyph.Descending : PanelGlyph.Ascending
    }
}
