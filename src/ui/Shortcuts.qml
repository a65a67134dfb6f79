import QtQuick
import Velmora

// The window's keys. Each does what the control that names it does, and only while that control is there.
Item {
    id: shortcuts

    required property ScanView scan
    required property Actions actions
    property bool menuOpen: false

    signal menuPressed

    Shortcut {
        sequence: "Ctrl+O"
        onActivated: shortcuts.actions.choose()
    }

    Shortcut {
        sequence: "Ctrl+C"
        enabled: shortcuts.scan.done
        onActivated: shortcuts.actions.copyRuntime()
    }

    Shortcut {
        sequence: "Ctrl+Shift+C"
        enabled: shortcuts.scan.done
        onActivated: shortcuts.actions.copyFileList()
    }

    Shortcut {
        sequence: "Ctrl+S"
        enabled: shortcuts.scan.done && !shortcuts.scan.zipWorking
        onActivated: shortcuts.actions.zip()
    }

    Shortcut {
        sequence: "Escape"
        enabled: !shortcuts.scan.idle && !shortcuts.menuOpen
        onActivated: shortcuts.actions.reset()
    }

    Shortcut {
        sequence: "Ctrl+Q"
        onActivated: shortcuts.actions.quit()
    }

    Shortcut {
        sequence: "F10"
        onActivated: shortcuts.menuPressed()
    }
}
