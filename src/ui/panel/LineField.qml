import QtQuick
import Velmora

// One line of text to edit.
FocusScope {
    id: field

    required property string label
    property string placeholder: ""
    property alias text: input.text
    property alias cursorPosition: input.cursorPosition
    readonly property bool atEnd: input.cursorPosition === input.length && input.selectedText === ""

    signal edited

    function select(from, to) {
        input.select(from, to);
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

    PanelText {
        anchors.fill: input
        visible: input.text === ""
        text: field.placeholder
        color: Neon.inkDim
    }

    TextInput {
        id: input

        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        focus: true
        clip: true
        horizontalAlignment: TextInput.AlignLeft // explicitly, as that of PanelText
        verticalAlignment: TextInput.AlignVCenter
        renderType: TextInput.NativeRendering
        selectByMouse: true
        color: Neon.ink
        selectionColor: Neon.indigo
        selectedTextColor: "white"
        font.family: "Inter"
        font.pixelSize: 12
        Accessible.role: Accessible.EditableText
        Accessible.name: field.label
        onTextEdited: field.edited()
    }
}
