import QtQuick
import Velmora

// An alert over the whole window: nothing else can be reached until one of its buttons is pressed.
FocusScope {
    id: box

    required property Alerts alerts
    property Item focusBefore: null

    visible: false
    focus: visible
    Accessible.role: Accessible.AlertMessage
    Accessible.name: alerts.title
    Accessible.description: alerts.body
    Keys.onUpPressed: body.scroll(-3)
    Keys.onDownPressed: body.scroll(3)
    Keys.onPressed: event => {
        const lines = {
            [Qt.Key_PageUp]: -12,
            [Qt.Key_PageDown]: 12,
            [Qt.Key_Home]: -body.lineCount,
            [Qt.Key_End]: body.lineCount
        }[event.key];
        event.accepted = lines !== undefined;
        if (event.accepted)
            body.scroll(lines);
    }
    Keys.onEscapePressed: alerts.dismiss()
    Keys.onReturnPressed: alerts.accept()
    Keys.onEnterPressed: alerts.accept()

    Connections {
        target: box.alerts

        function onChanged() {
            if (!box.visible)
                box.focusBefore = box.Window.activeFocusItem;
            box.visible = box.alerts.open;
            const next = box.visible ? accept : box.focusBefore;
            if (next)
                next.forceActiveFocus(Qt.PopupFocusReason);
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
        anchors.centerIn: parent
        width: 400
        height: texts.implicitHeight + 48
        fill: Neon.bgTop
        border: Neon.violet
        borderOpacity: 0.5
        radius: 18

        Column {
            id: texts

            x: 28
            y: 24
            width: parent.width - 56
            spacing: 14

            // The alignment is set explicitly: otherwise Qt asks the keyboard how an empty text is aligned,
            // and crashes on Wayland without a keyboard.
            Text {
                objectName: "alertTitle"
                width: parent.width
                text: box.alerts.title
                textFormat: Text.PlainText
                horizontalAlignment: Text.AlignLeft
                wrapMode: Text.Wrap
                maximumLineCount: 3
                elide: Text.ElideRight
                renderType: Text.NativeRendering
                color: Neon.ink
                font.family: "Inter"
                font.pixelSize: 16
                font.weight: Font.Bold
            }

            ScrolledText {
                id: body

                objectName: "alertBody"
                width: parent.width
                text: box.alerts.body
            }

            SwitchLine {
                id: setting

                objectName: "alertSetting"
                visible: title !== ""
                title: box.alerts.settingTitle
                on: box.alerts.settingOn
                KeyNavigation.tab: dismiss
                onPressed: box.alerts.turn()
            }

            Row {
                anchors.right: parent.right
                topPadding: 6
                spacing: 10

                NeonButton {
                    id: dismiss

                    objectName: "alertDismiss"
                    visible: title !== ""
                    title: box.alerts.dismissTitle
                    tint: Neon.inkDim
                    KeyNavigation.tab: accept
                    KeyNavigation.right: accept
                    onPressed: box.alerts.dismiss()
                }

                NeonButton {
                    id: accept

                    objectName: "alertAccept"
                    title: box.alerts.acceptTitle
                    tint: Neon.violet
                    KeyNavigation.tab: setting
                    onPressed: box.alerts.accept()
                }
            }
        }
    }
}
