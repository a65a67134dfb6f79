import QtQuick
import Velmora

// A button that gives way to a field for the name of a folder to make.
Item {
    id: maker

    required property FilePanel panel
    property bool naming: false

    implicitWidth: naming ? 220 : button.implicitWidth
    implicitHeight: 30

    PanelButton {
        id: button

        height: parent.height
        visible: !maker.naming
        title: "New folder"
        label: "New folder"
        onPressed: {
            maker.naming = true;
            field.text = "";
            field.forceActiveFocus(Qt.OtherFocusReason);
        }
    }

    LineField {
        id: field

        anchors.fill: parent
        visible: maker.naming
        label: "Name of the new folder"
        placeholder: "Name of the new folder"
        onActiveFocusChanged: if (!activeFocus)
            maker.naming = false
        Keys.onEscapePressed: button.forceActiveFocus(Qt.OtherFocusReason)
        Keys.onReturnPressed: {
            maker.panel.makeFolder(text);
            button.forceActiveFocus(Qt.OtherFocusReason);
        }
        Keys.onEnterPressed: event => Keys.returnPressed(event)
    }
}
