import QtQuick
import Velmora

// Shows the file panel while it is open, and gives the focus back to what had it before.
Loader {
    id: host

    required property FilePanel panel
    property real headroom: 0 ///< at the top, left to the title bar
    property Item focusBefore: null

    active: false
    focus: active

    // Qt 6.4 loads no component that is bound to its context (ComponentBehavior).
    // qmllint disable unqualified
    sourceComponent: FilePanelBox {
        panel: host.panel
        headroom: host.headroom
    }
    // qmllint enable unqualified

    Connections {
        target: host.panel

        function onOpenChanged() {
            if (host.panel.open) {
                host.focusBefore = host.Window.activeFocusItem;
                host.active = true;
            } else {
                host.active = false;
                if (host.focusBefore)
                    host.focusBefore.forceActiveFocus(Qt.PopupFocusReason);
            }
        }
    }
}
