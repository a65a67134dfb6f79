import QtQuick
import Velmora

// One row of a table, which is reused for another row when it has been scrolled out of sight.
Item {
    id: line

    required property RowsModel rows
    required property int index
    required property var cells
    required property bool selected
    required property bool current
    required property bool missing
    required property int depth
    property bool marked: false ///< whether the current row is to be seen

    signal activated

    implicitHeight: 24
    Accessible.role: Accessible.ListItem
    Accessible.name: cells.join("  ")
    Accessible.selected: selected
    Accessible.onPressAction: rows.select(index)

    Rectangle {
        anchors.fill: parent
        color: line.selected ? Neon.indigo : Neon.ink
        opacity: line.selected ? 0.4 : area.containsMouse ? 0.06 : line.index % 2 ? 0.02 : 0
    }

    TableRow {
        anchors.fill: parent
        cells: line.cells
        columns: line.rows.columns
        depth: line.depth
        missing: line.missing
    }

    Rectangle {
        width: 2
        height: parent.height
        visible: line.marked && line.current
        color: Neon.ink
    }

    MouseArea {
        id: area

        anchors.fill: parent
        hoverEnabled: true
        preventStealing: true
        onPressed: mouse => {
            if (mouse.modifiers & Qt.ControlModifier)
                line.rows.toggle(line.index);
            else if (mouse.modifiers & Qt.ShiftModifier)
                line.rows.extendTo(line.index);
            else
                line.rows.select(line.index);
        }
        onDoubleClicked: line.activated()
    }
}
