pragma ComponentBehavior: Bound

import QtQuick
import Velmora

// "Which files?": what a scan found, over the card. Tabs choose the list, the table shows it.
FocusScope {
    id: view

    required property Details details
    required property Actions actions
    property bool blocked: false ///< by an alert

    function copy() {
        details.rows.copy();
    }

    function reveal(row) {
        actions.reveal(details.rows.placeOf(row));
    }

    Accessible.role: Accessible.Pane
    Accessible.name: "Details"

    Shortcut {
        sequence: "Ctrl+C"
        enabled: !view.blocked
        onActivated: view.copy()
    }

    Shortcut {
        sequence: "Ctrl+F"
        enabled: !view.blocked
        onActivated: search.forceActiveFocus(Qt.ShortcutFocusReason)
    }

    Timer {
        id: copied

        interval: 1400
    }

    Connections {
        target: view.details

        function onCopied() {
            copied.restart();
        }
    }

    // Nothing behind it is pressed.
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onWheel: wheel => wheel.accepted = true
    }

    Plate {
        anchors.fill: parent
        anchors.margins: 1
        fill: Neon.bgMid
        fillOpacity: 0.92
        radius: 17
    }

    Row {
        id: tabs

        x: 22
        y: 12
        spacing: 22

        Repeater {
            model: view.details.lists

            DetailsTab {
                required property var modelData

                objectName: "tab" + modelData.title
                title: modelData.title
                shown: view.details.list === modelData.list
                onPressed: {
                    search.text = "";
                    view.details.openOn(modelData.list);
                }
            }
        }
    }

    LineField {
        id: search

        objectName: "detailsSearch"
        anchors.right: close.left
        anchors.rightMargin: 12
        y: 12
        width: 220
        height: 28
        label: "Search"
        placeholder: "Search"
        onTextChanged: view.details.rows.search = text
        Keys.onDownPressed: table.forceActiveFocus(Qt.TabFocusReason)
        Keys.onReturnPressed: table.forceActiveFocus(Qt.TabFocusReason)
        Keys.onEnterPressed: table.forceActiveFocus(Qt.TabFocusReason)
    }

    Pressable {
        id: close

        objectName: "detailsClose"
        anchors.right: parent.right
        anchors.rightMargin: 14
        y: 12
        width: 28
        height: 28
        label: "Close"
        toolTip: "Close  \u00b7  Esc"
        toolTipBelow: true
        ringRadius: 7
        ringInset: 0
        onPressed: view.details.close()

        Caption {
            anchors.centerIn: parent
            text: "\u00d7"
            size: 20
            color: close.hovered ? Neon.ink : Neon.inkDim
            Accessible.ignored: true
        }
    }

    FormatChips {
        id: chips

        objectName: "detailsChips"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: tabs.bottom
        anchors.leftMargin: 22
        anchors.rightMargin: 22
        anchors.topMargin: 12
        height: count > 0 ? implicitHeight : 0
        model: view.details.chips
    }

    DetailsTable {
        id: table

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: chips.bottom
        anchors.bottom: foot.top
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        anchors.topMargin: 8
        anchors.bottomMargin: 8
        focus: true
        rows: view.details.rows
        onActivated: row => view.reveal(row)
        onTyped: letters => search.type(letters)
    }

    Item {
        id: foot

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.leftMargin: 22
        anchors.rightMargin: 22
        anchors.bottomMargin: 12
        height: copyPill.height

        Caption {
            objectName: "detailsCount"
            anchors.verticalCenter: parent.verticalCenter
            text: view.details.rows.countText
            size: 10
            weight: Font.Bold
            tracking: 1.6
            color: Neon.inkDim
        }

        Row {
            anchors.right: parent.right
            spacing: 10

            NeonPill {
                id: copyPill

                objectName: "detailsCopy"
                text: copied.running ? "COPIED" : "COPY"
                tint: Neon.violet
                actionable: view.details.rows.count > 0
                toolTip: "Copy the selected lines, or all  \u00b7  Ctrl+C"
                onPressed: view.copy()
            }

            NeonPill {
                objectName: "detailsReveal"
                text: "SHOW IN FOLDER"
                tint: Neon.indigo
                actionable: view.details.rows.current >= 0
                toolTip: "Show the file in the file manager  \u00b7  Enter"
                onPressed: view.reveal(view.details.rows.current)
            }
        }
    }
}
