pragma ComponentBehavior: Bound

import QtQuick
import Velmora

// What the folder holds. One control for the keyboard: arrows go, Shift extends, Space selects and deselects,
// letters look for a name.
FocusScope {
    id: table

    required property FilePanel panel
    readonly property FileList files: panel.files
    property string letters: "" ///< typed one shortly after the other

    signal pathBegun(string text)

    function go(row, modifiers) {
        if (modifiers & Qt.ShiftModifier)
            files.extendTo(row);
        else if (modifiers & Qt.ControlModifier)
            files.moveTo(row);
        else
            files.choose(row);
    }

    function point(row, modifiers) {
        list.forceActiveFocus(Qt.MouseFocusReason);
        if (modifiers & Qt.ControlModifier)
            files.toggle(row);
        else
            go(row, modifiers);
    }

    /// Goes to the next name that begins with the letters typed so far.
    function look(letter) {
        letters += letter;
        rest.restart();
        const again = letters.length > 1 && letters === letters.charAt(0).repeat(letters.length);
        const found = files.find(again ? letter : letters, files.current + (again || letters.length === 1 ? 1 : 0));
        if (found >= 0)
            files.choose(found);
    }

    /// Where the key `event` leads from the current row; absent if it is no key that leads elsewhere.
    function target(event) {
        const page = Math.max(1, Math.floor(list.height / 26) - 1);
        switch (event.key) {
        case Qt.Key_Up:
            return event.modifiers & Qt.AltModifier ? undefined : files.current - 1;
        case Qt.Key_Down:
            return files.selectedCount === 0 && files.current === 0 && !(event.modifiers & Qt.ControlModifier) ? 0 : files.current + 1;
        case Qt.Key_Home:
            return 0;
        case Qt.Key_End:
            return files.count - 1;
        case Qt.Key_PageUp:
            return files.current - page;
        case Qt.Key_PageDown:
            return files.current + page;
        }
    }

    Timer {
        id: rest

        interval: 1000
        onTriggered: table.letters = ""
    }

    Plate {
        objectName: "fileTable"
        anchors.fill: parent
        fill: Neon.bgBottom
        border: Neon.indigo
        borderOpacity: 0.35
        radius: 9
    }

    Row {
        id: headers

        x: 2
        y: 2
        width: parent.width - 4

        FileHeader {
            width: headers.width - sizeHeader.width - dateHeader.width
            files: table.files
            column: FileList.Name
            title: "Name"
        }

        FileHeader {
            id: sizeHeader

            width: 90
            files: table.files
            column: FileList.Size
            title: "Size"
            alignment: Text.AlignRight
        }

        FileHeader {
            id: dateHeader

            width: 150
            files: table.files
            column: FileList.Date
            title: "Changed"
        }
    }

    Rectangle {
        x: 1
        y: headers.height + 2
        width: parent.width - 2
        height: 1
        color: Neon.indigo
        opacity: 0.35
    }

    ListView {
        id: list

        objectName: "fileList"
        x: 2
        y: headers.height + 4
        width: parent.width - 4
        height: parent.height - y - 3
        focus: true
        activeFocusOnTab: true
        clip: true
        reuseItems: true
        keyNavigationEnabled: false
        boundsBehavior: Flickable.StopAtBounds
        highlightFollowsCurrentItem: false
        model: table.files
        Accessible.role: Accessible.List
        Accessible.name: "Files"
        Keys.onPressed: event => {
            const row = table.target(event);
            event.accepted = true;
            if (row !== undefined && table.files.count > 0)
                table.go(row, event.modifiers);
            else if (event.key === Qt.Key_Space && table.letters === "")
                table.files.toggle(table.files.current);
            else if (event.key === Qt.Key_A && event.modifiers === Qt.ControlModifier)
                table.files.selectAll();
            else if (event.key === Qt.Key_Backspace)
                table.panel.goUp();
            else if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && event.modifiers !== Qt.ControlModifier)
                table.panel.activate();
            else if (event.text === "/" || event.text === "~")
                table.pathBegun(event.text);
            else if (event.text > " " && !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier)) || (event.key === Qt.Key_Space && table.letters !== ""))
                table.look(event.text);
            else
                event.accepted = false;
        }

        Connections {
            target: table.files as QtObject

            function onCurrentChanged() {
                if (table.files.current >= 0)
                    list.positionViewAtIndex(table.files.current, ListView.Contain);
            }
        }

        delegate: FileRow {
            width: ListView.view.width
            current: list.activeFocus && index === table.files.current
            faint: table.panel.saving && kind !== PanelGlyph.Folder
            onPressed: modifiers => table.point(index, modifiers)
            onOpened: table.panel.activate()
        }
    }

    ScrollBar {
        anchors.right: parent.right
        y: list.y
        height: list.height
        flickable: list
    }

    PanelText {
        anchors.centerIn: list
        width: list.width - 40
        horizontalAlignment: Text.AlignHCenter
        visible: text !== ""
        text: table.panel.notice
        color: Neon.inkDim
        Accessible.ignored: false
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    // Not at once: most folders are read before one can see it.
    PanelText {
        readonly property bool reading: table.panel.reading
        property bool late: false

        anchors.centerIn: list
        visible: reading && late
        text: "Reading\u2026"
        onReadingChanged: {
            late = false;
            if (reading)
                patience.restart();
            else
                patience.stop();
        }
        Component.onCompleted: if (reading)
            patience.start()
        color: Neon.inkDim
        Accessible.ignored: false
        Accessible.role: Accessible.StaticText
        Accessible.name: text

        Timer {
            id: patience

            interval: 200
            onTriggered: parent.late = true
        }
    }
}
