import QtQuick
import Velmora

// The menu below the first button of the title bar. It closes when a command is chosen or the focus goes elsewhere.
FocusScope {
    id: menu

    required property Actions actions
    required property Details details
    property Item focusBefore: null

    function open() {
        if (!visible)
            focusBefore = Window.activeFocusItem;
        visible = true;
        (details.available ? which : about).forceActiveFocus(Qt.PopupFocusReason);
    }

    function close() {
        const hadFocus = activeFocus;
        visible = false;
        focus = false;
        if (hadFocus && focusBefore)
            focusBefore.forceActiveFocus(Qt.PopupFocusReason);
    }

    implicitWidth: 196
    implicitHeight: rows.implicitHeight + 12
    visible: false
    Accessible.role: Accessible.PopupMenu
    Accessible.name: "Velmora"
    onActiveFocusChanged: if (!activeFocus)
        close()
    Keys.onEscapePressed: close()

    Plate {
        anchors.fill: parent
        fill: Neon.bgMid
        border: Neon.indigo
        borderOpacity: 0.5
    }

    Column {
        id: rows

        x: 6
        y: 6
        width: parent.width - 12

        MenuRow {
            id: which

            objectName: "detailsRow"
            visible: menu.details.available
            title: "Details"
            KeyNavigation.up: quit
            KeyNavigation.down: about
            onPressed: {
                menu.close();
                menu.details.openOn(Details.Files);
            }
        }

        MenuRow {
            id: about

            objectName: "aboutRow"
            title: "About Velmora"
            KeyNavigation.up: which.visible ? which : quit
            KeyNavigation.down: updates
            onPressed: {
                menu.close();
                menu.actions.about();
            }
        }

        MenuRow {
            id: updates

            objectName: "updatesRow"
            title: "Check for Updates\u2026"
            KeyNavigation.up: about
            KeyNavigation.down: quit
            onPressed: {
                menu.close();
                menu.actions.checkForUpdates();
            }
        }

        MenuRow {
            id: quit

            objectName: "quitRow"
            title: "Quit"
            KeyNavigation.up: updates
            KeyNavigation.down: which.visible ? which : about
            onPressed: {
                menu.close();
                menu.actions.quit();
            }
        }
    }
}
