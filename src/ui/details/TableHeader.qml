pragma ComponentBehavior: Bound

import QtQuick
import Velmora

// The titles of the columns. Pressing one sorts by it.
Item {
    id: header

    required property RowsModel rows

    implicitHeight: 26

    Row {
        anchors.fill: parent

        Repeater {
            model: header.rows.columns

            Pressable {
                id: title

                required property var modelData
                required property int index
                readonly property bool sorted: header.rows.sortColumn === index

                objectName: "column" + index
                width: header.width * modelData.share
                height: header.height
                label: modelData.title
                ringRadius: 6
                ringInset: 1
                Accessible.role: Accessible.ColumnHeader
                Accessible.description: sorted ? (header.rows.descending ? "descending" : "ascending") : ""
                onPressed: header.rows.sortBy(index)

                Caption {
                    anchors.verticalCenter: parent.verticalCenter
                    x: title.modelData.isNumber ? title.width - 12 - width : 12
                    text: title.modelData.title + (title.sorted ? (header.rows.descending ? " \u2193" : " \u2191") : "")
                    size: 9
                    weight: Font.Bold
                    tracking: 1.5
                    color: title.sorted ? Neon.violet : title.hovered ? Neon.ink : Neon.inkDim
                    Accessible.ignored: true
                }
            }
        }
    }

    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Neon.indigo
        opacity: 0.4
    }
}
