pragma ComponentBehavior: Bound

import QtQuick
import Velmora

// One line of text to edit.
FocusScope {
    id: field

    required property string label
    required property bool typable ///< see FilePanel
    property string placeholder: ""
    property string text: ""

    signal edited

    function select(from, to) {
        if (input.item)
            (input.item as TextInput).select(from, to);
    }

    function goToEnd() {
        if (input.item)
            (input.item as TextInput).cursorPosition = (input.item as TextInput).length;
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
        visible: field.text === "" || !field.typable
        text: field.text === "" ? field.placeholder : field.text
        color: Neon.inkDim
    }

    Loader {
        id: input

        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        focus: true
        active: field.typable

        sourceComponent: TextInput {
            text: field.text
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
            onTextEdited: {
                field.text = text;
                field.edited();
            }
        }
    }
}
