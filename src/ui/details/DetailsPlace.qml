import QtQuick
import Velmora

// Where the details appear. They exist only while they are open, and give the focus back when they close.
Loader {
    id: place

    required property Details details
    required property Actions actions
    property bool blocked: false
    property Item focusBefore: null

    active: false

    // Qt 6.4 loads no component that is bound to its context (ComponentBehavior).
    // qmllint disable unqualified
    sourceComponent: DetailsView {
        details: place.details
        actions: place.actions
        blocked: place.blocked
        focus: true
    }
    // qmllint enable unqualified

    Connections {
        target: place.details

        // Also when they were closed meanwhile.
        function onCopied(text) {
            place.actions.copyText(text);
        }

        function onOpenChanged() {
            if (place.details.open && !place.active) {
                place.focusBefore = place.Window.activeFocusItem;
                place.active = true;
                place.forceActiveFocus(Qt.PopupFocusReason);
            } else if (!place.details.open) {
                const hadFocus = place.activeFocus;
                place.active = false;
                if (hadFocus && place.focusBefore)
                    place.focusBefore.forceActiveFocus(Qt.PopupFocusReason);
            }
        }
    }
}
