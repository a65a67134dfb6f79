import QtQuick
import Velmora

// The file panel, which fills the window.
FocusScope {
    id: box

    required property FilePanel panel
    property real headroom: 0

    focus: true
    Accessible.role: Accessible.Dialog
    Accessible.name: panel.message
    Keys.onPressed: event => {
        event.accepted = true;
        if (event.key === Qt.Key_Escape)
            panel.close();
        else if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && event.modifiers & Qt.ControlModifier)
            panel.accept();
        else if (event.key === Qt.Key_L && event.modifiers === Qt.ControlModifier)
            path.type(panel.folderText);
        else if (event.key === Qt.Key_H && event.modifiers === Qt.ControlModifier)
            panel.files.hiddenToo = !panel.files.hiddenToo;
        else if (event.key === Qt.Key_Up && event.modifiers === Qt.AltModifier)
            panel.goUp();
        else if (event.key === Qt.Key_Left && event.modifiers === Qt.AltModifier)
            panel.goBack();
        else
            event.accepted = false;
    }
    Component.onCompleted: {
        if (panel.saving) {
            nameField.text = panel.name;
            nameField.forceActiveFocus(Qt.PopupFocusReason);
            nameField.select(0, Math.max(0, panel.name.lastIndexOf(".")));
        } else {
            table.forceActiveFocus(Qt.PopupFocusReason);
        }
    }

    Connections {
        target: box.panel

        function onNameChanged() {
            if (nameField.text !== box.panel.name)
                nameField.text = box.panel.name;
        }

        function onTypedChanged() {
            if (!box.panel.typing && path.activeFocus)
                table.forceActiveFocus(Qt.OtherFocusReason);
        }
    }

    Rectangle {
        anchors.fill: parent
        color: "black"
        opacity: 0.6
    }

    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onWheel: wheel => wheel.accepted = true
    }

    Plate {
        id: plate

        anchors.centerIn: parent
        anchors.verticalCenterOffset: box.headroom / 2
        width: Math.min(parent.width - 40, 1280)
        height: Math.min(parent.height - box.headroom - 40, 900)
        fill: Neon.bgTop
        border: Neon.violet
        borderOpacity: 0.5
        radius: 18
    }

    Item {
        id: inside

        anchors.fill: plate
        anchors.margins: 22

        PanelText {
            id: message

            width: parent.width
            text: box.panel.message
            font.pixelSize: 16
            font.weight: Font.Bold
            Accessible.ignored: false
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }

        PathBar {
            id: path

            anchors.top: message.bottom
            anchors.topMargin: 14
            width: parent.width
            panel: box.panel
        }

        PlaceList {
            id: places

            anchors.top: path.bottom
            anchors.topMargin: 10
            anchors.bottom: nameLine.top
            anchors.bottomMargin: table.anchors.bottomMargin
            width: 168
            panel: box.panel
        }

        FileTable {
            id: table

            anchors.top: path.bottom
            anchors.topMargin: 10
            anchors.bottom: nameLine.top
            anchors.left: places.right
            anchors.right: parent.right
            anchors.leftMargin: 14
            anchors.bottomMargin: nameLine.visible ? 12 : 0
            panel: box.panel
            onPathBegun: text => path.type(text)
        }

        Item {
            id: nameLine

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: buttons.top
            anchors.bottomMargin: 14
            height: visible ? 30 : 0
            visible: box.panel.saving

            PanelText {
                width: 168
                height: parent.height
                leftPadding: 8
                text: "Name"
                color: Neon.inkDim
            }

            LineField {
                id: nameField

                anchors.left: parent.left
                anchors.leftMargin: 168 + 14
                anchors.right: newFolder.left
                anchors.rightMargin: 10
                label: "Name"
                onEdited: box.panel.name = text
                Keys.onReturnPressed: box.panel.accept()
                Keys.onEnterPressed: box.panel.accept()
            }

            NewFolder {
                id: newFolder

                anchors.right: parent.right
                panel: box.panel
            }
        }

        Row {
            id: switches

            anchors.left: parent.left
            anchors.verticalCenter: buttons.verticalCenter
            spacing: 6

            PanelButton {
                title: "All files"
                label: "All files"
                toolTip: "Shows files that are neither audio nor archives, too"
                lit: box.panel.files.all
                onPressed: box.panel.files.all = !box.panel.files.all
            }

            PanelButton {
                title: "Hidden"
                label: "Hidden files"
                toolTip: "Shows hidden files, too  \u00b7  Ctrl+H"
                lit: box.panel.files.hiddenToo
                onPressed: box.panel.files.hiddenToo = !box.panel.files.hiddenToo
            }
        }

        Row {
            id: buttons

            anchors.right: parent.right
            anchors.bottom: parent.bottom
            spacing: 10

            NeonButton {
                objectName: "panelCancel"
                title: "Cancel"
                tint: Neon.inkDim
                onPressed: box.panel.close()
            }

            NeonButton {
                objectName: "panelAccept"
                title: box.panel.prompt
                tint: Neon.violet
                enabled: box.panel.acceptable
                onPressed: box.panel.accept()
            }
        }

        PanelText {
            anchors.left: switches.right
            anchors.right: buttons.left
            anchors.margins: 14
            anchors.verticalCenter: buttons.verticalCenter
            horizontalAlignment: Text.AlignRight
            elide: Text.ElideMiddle
            text: box.panel.complaint !== "" ? box.panel.complaint : box.hint
            color: box.panel.complaint !== "" ? Neon.alert : Neon.inkDim
            font.pixelSize: 11
            Accessible.ignored: false
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }

    readonly property string hint: {
        if (panel.saving)
            return "";
        const keys = "Enter opens a folder  \u00b7  Ctrl+Enter measures what is selected";
        return panel.files.selectedCount > 0 ? panel.files.selectedCount + " selected  \u00b7  " + keys : keys;
    }
}
