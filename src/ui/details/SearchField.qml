import QtQuick
import Velmora

// What is typed here is searched for at once.
FocusScope {
    id: field

    property alias text: input.text

    signal leaving ///< downwards, to what was found

    function type(letters) {
        input.forceActiveFocus(Qt.ShortcutFocusReason);
        input.insert(input.cursorPosition, letters);
    }

    implicitWidth: 220
    implicitHeight: 28

    Plate {
        anchors.fill: parent
        fill: Neon.ink
        fillOpacity: 0.04
        border: Neon.indigo
        borderOpacity: input.activeFocus ? 1 : Math.max(0.4, Neon.minBorderOpacity)
        radius: 7
    }

    Caption {
        anchors.verticalCenter: parent.verticalCenter
        x: 10
        visible: input.text === ""
        text: "Search"
        size: 12
        color: Neon.inkDim
        Accessible.ignored: true
    }

    // The alignment is set explicitly: otherwise Qt asks the keyboard how an empty text is aligned, and crashes on
    // Wayland without a keyboard.
    TextInput {
        id: input

        objectName: "detailsSearch"
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        focus: true
        activeFocusOnTab: true
        clip: true
        verticalAlignment: TextInput.AlignVCenter
        horizontalAlignment: TextInput.AlignLeft
        renderType: Text.NativeRendering
        color: Neon.ink
        selectionColor: Neon.indigo
        selectedTextColor: Neon.ink
        selectByMouse: true
        font.family: "Inter"
        font.pixelSize: 12
        Accessible.role: Accessible.EditableText
        Accessible.name: "Search"
        Keys.onDownPressed: field.leaving()
        Keys.onReturnPressed: field.leaving()
        Keys.onEnterPressed: field.leaving()
    }
}
