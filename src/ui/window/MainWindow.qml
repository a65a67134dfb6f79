import QtQuick
import Velmora

// The window: a title bar of its own on top, the content below. Dragging any part of the background moves it.
Window {
    id: window

    required property ScanView scan
    required property Actions actions
    required property Alerts alerts
    required property Details details
    required property FilePanel panel
    property bool animated: true
    property bool covered: false ///< nothing of the window can be seen
    property size workArea: Qt.size(Infinity, Infinity) ///< what the first size has to fit into
    property bool highContrast: false
    property bool checking: false ///< whether the user waits for the answer about newer versions

    // A Wayland compositor ends a program whose maximised window is larger than the compositor asked for.
    // Where the screen has no room for the minimum size beside a taskbar, the minimum is lowered.
    readonly property bool lowersMinimum: Qt.platform.pluginName.startsWith("wayland")
    readonly property int taskbar: 64 ///< points, an estimate

    width: Math.max(minimumWidth, Math.min(940, workArea.width - (lowersMinimum ? taskbar : 0)))
    height: Math.max(minimumHeight, Math.min(728, workArea.height - (lowersMinimum ? taskbar : 0)))
    minimumWidth: lowersMinimum ? Math.min(880, Screen.width - taskbar) : 880
    minimumHeight: lowersMinimum ? Math.min(688, Screen.height - taskbar) : 688
    color: "black"
    flags: Qt.Window | Qt.FramelessWindowHint
    title: scan.windowTitle

    FrameClock {
        id: clock

        window: window
        animated: window.animated && !window.covered && !panelHost.active // nothing else moves then
    }

    Binding {
        target: Neon
        property: "highContrast"
        value: window.highContrast
    }

    WindowMover {
        anchors.fill: parent
        window: window
    }

    ContentView {
        id: content

        anchors.fill: parent
        anchors.topMargin: titleBar.height
        headroom: titleBar.height
        enabled: !panelHost.active
        scan: window.scan
        actions: window.actions
        time: clock.time
        animated: window.animated
        cardCovered: window.details.open
        onFilesWanted: window.details.openOn(Details.Files)
        onUnreadableWanted: window.details.openOn(Details.Unreadable)
    }

    DetailsPlace {
        x: content.x + content.card.x
        y: content.y + content.card.y
        width: content.card.width
        height: content.card.height
        details: window.details
        actions: window.actions
        enabled: !panelHost.active
        blocked: window.alerts.open || panelHost.active
    }

    PanelHost {
        id: panelHost

        anchors.fill: parent
        headroom: titleBar.height
        panel: window.panel
    }

    TitleBar {
        id: titleBar

        objectName: "titleBar"
        width: parent.width
        window: window
        checking: window.checking
        onMenuPressed: menu.open()
    }

    MouseArea {
        anchors.fill: parent
        visible: menu.visible
        onPressed: menu.close()
    }

    MainMenu {
        id: menu

        objectName: "menu"
        x: 6
        y: titleBar.height + 2
        actions: window.actions
        details: window.details
    }

    WindowEdge {
        objectName: "windowEdge"
        anchors.fill: parent
        visible: !titleBar.filling
    }

    ResizeFrame {
        anchors.fill: parent
        visible: !titleBar.filling
        window: window
    }

    Shortcuts {
        menuOpen: menu.visible
        blocked: window.alerts.open || panelHost.active
        scan: window.scan
        actions: window.actions
        details: window.details
        onMenuPressed: menu.visible ? menu.close() : menu.open()
    }

    Announcement {
        objectName: "scanAnnouncement"
        text: window.scan.done ? (window.scan.totalWords + "  " + window.scan.unreadableLine).trim() : window.scan.status
    }

    Announcement {
        objectName: "zipAnnouncement"
        text: window.scan.zipWorking ? "ZIPPING" : window.scan.zipText
    }

    AlertBox {
        objectName: "alertBox"
        anchors.fill: parent
        alerts: window.alerts
    }
}
