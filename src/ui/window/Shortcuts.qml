import QtQuick
import Velmora

// The window's keys. Each does what a control does, and only while that control is shown and enabled. Escape
// also does nothing while a zip archive is written: one key press must not lose that work.
Item {
    id: shortcuts

    required property ScanView scan
    required property Actions actions
    required property Details details
    property bool menuOpen: false
    property bool blocked: false

    signal menuPressed

    Shortcut {
        sequence: "Ctrl+O"
        enabled: !shortcuts.blocked
        onActivated: shortcuts.actions.choose()
    }

    Shortcut {
        sequence: "Ctrl+C"
        enabled: !shortcuts.blocked && shortcuts.scan.done && !shortcuts.details.open
        onActivated: shortcuts.actions.copyRuntime()
    }

    Shortcut {
        sequence: "Ctrl+Shift+C"
        enabled: !shortcuts.blocked && shortcuts.scan.done
        onActivated: shortcuts.actions.copyFileList()
    }

    Shortcut {
        sequence: "Ctrl+S"
        enabled: !shortcuts.blocked && shortcuts.scan.done && !shortcuts.scan.zipWorking
        onActivated: shortcuts.actions.zip()
    }

    Shortcut {
        sequence: "Ctrl+D"
        enabled: !shortcuts.blocked && shortcuts.details.available
        onActivated: {
            if (shortcuts.details.open)
                shortcuts.details.close();
            else
                shortcuts.details.openOn(Details.Files);
        }
    }

    Shortcut {
        sequence: "Escape"
        enabled: !shortcuts.blocked && !shortcuts.menuOpen && shortcuts.details.open
        onActivated: shortcuts.details.close()
    }

    Shortcut {
        sequence: "Escape"
        enabled: !shortcuts.blocked && !shortcuts.menuOpen && !shortcuts.details.open && !shortcuts.scan.idle
                 && !shortcuts.scan.zipWorking
        onActivated: shortcuts.actions.reset()
    }

    Shortcut {
        sequence: "Ctrl+Q"
        enabled: !shortcuts.blocked
        onActivated: shortcuts.actions.quit()
    }

    Shortcut {
        sequence: "F10"
        enabled: !shortcuts.blocked
        onActivated: shortcuts.menuPressed()
    }
}
