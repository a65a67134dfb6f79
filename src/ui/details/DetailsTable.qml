pragma ComponentBehavior: Bound

import QtQuick
import Velmora

// A list with its columns, its rows and its keys. However many rows it has, it makes those that are seen.
FocusScope {
    id: table

    required property RowsModel rows

    signal activated(int row) ///< Enter or a double click
    signal typed(string letters)

    function move(by, extending) {
        const from = rows.selectedCount > 0 || by > 1 || by < -1 ? rows.current + by : rows.current;
        const row = Math.max(0, Math.min(rows.count - 1, from));
        if (extending)
            rows.extendTo(row);
        else
            rows.select(row);
        list.positionViewAtIndex(row, ListView.Contain);
    }

    function stepOf(key) {
        const page = Math.max(2, Math.floor(list.height / list.lineHeight) - 1);
        switch (key) {
        case Qt.Key_Up:
            return -1;
        case Qt.Key_Down:
            return 1;
        case Qt.Key_PageUp:
            return -page;
        case Qt.Key_PageDown:
            return page;
        case Qt.Key_Home:
            return -rows.count - 1;
        case Qt.Key_End:
            return rows.count + 1;
        }
        return 0;
    }

    TableHeader {
        id: header

        width: list.width
        rows: table.rows
    }

    ListView {
        id: list

        readonly property int lineHeight: 24

        objectName: "detailsList"
        anchors.fill: parent
        anchors.topMargin: header.height
        anchors.rightMargin: 14
        focus: true
        activeFocusOnTab: true
        clip: true
        reuseItems: true
        pixelAligned: true
        boundsBehavior: Flickable.StopAtBounds
        currentIndex: -1
        model: table.rows
        Accessible.role: Accessible.List
        Accessible.name: table.rows.countText
        Keys.onReturnPressed: table.activated(table.rows.current)
        Keys.onEnterPressed: table.activated(table.rows.current)
        Keys.onPressed: event => {
            const by = table.stepOf(event.key);
            const control = event.modifiers & Qt.ControlModifier;
            event.accepted = true;
            if (by !== 0)
                table.move(by, (event.modifiers & Qt.ShiftModifier) !== 0);
            else if (control && event.key === Qt.Key_A)
                table.rows.selectAll();
            else if (!control && event.text > " ")
                table.typed(event.text);
            else
                event.accepted = false;
        }

        Connections {
            target: table.rows as QtObject

            function onRearranged() {
                list.positionViewAtBeginning();
            }
        }

        delegate: TableLine {
            objectName: "detailsLine"
            width: list.width
            height: list.lineHeight
            rows: table.rows
            marked: list.activeFocus
            onActivated: table.activated(index)
        }
    }

    ScrollBar {
        objectName: "detailsScrollBar"
        anchors.right: parent.right
        anchors.top: list.top
        anchors.bottom: list.bottom
        flickable: list
    }
}
