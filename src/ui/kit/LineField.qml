import QtQuick
import Velmora

// One line of text to edit.
FocusScope {
    id: field

    required property string label
    property string placeholder: ""
    property alias text: input.text
    property alias cursorPosition: input.cursorPosition

    signal edited

    function select(from, to) {
        input.select(from, to);
    }

    /// As if they were typed here.
    function type(letters) {
        input.forceActiveFocus(Qt.ShortcutFocusReason);
        input.insert(input.cursorPosition, letters);
    }

    implicitHeight: 30
    activeFocusOnTab: true

    Plate {
        anchors.fill: parent
        fill: Neon.bgBottom
        border: input.activeFocus ? Neon.violet : Neon.indigo
        borderOpacity: input.activeFocus ? 1 : 0.5
        radius: 7
    }

    Caption {
        anchors.verticalCenter: parent.verticalCenter
        x: 10
        visible: input.text === ""
        text: field.placeholder
        size: 12
        color: Neon.inkDim
        Accessible.ignored: true
    }

    // The alignment is set explicitly: otherwise Qt asks the keyboard how an empty text is aligned, and crashes on
    // Wayland without a keyboard.
    TextInput {
        id: input

        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        focus: true
        clip: true
        horizontalAlignment: TextInput.AlignLeft
        verticalAlignment: TextInput.AlignVCenter
        renderType: TextInput.NativeRendering
        selectByMouse: true
        color: Neon.ink
        selectionColor: Neon.indigo
        selectedTextColor: Neon.ink
        font.family: "Inter"
        font.pixelSize: 12
        Accessible.role: Accessible.EditableText
        Accessible.name: field.label
        onTextEdited: field.edited()
    }
}
