import QtQuick
import Velmora

// The bottom row: the buttons of the present phase, and the state of the packing.
Item {
    id: footer

    required property ScanView scan
    required property Actions actions
    property real time: 0
    property bool animated: true

    implicitHeight: buttons.implicitHeight

    /// A button of one phase.
    component PhaseButton: NeonButton {
        signal goneWithFocus

        onVisibleChanged: if (!visible && focus)
            goneWithFocus()
    }

    function focusFirst() {
        (scan.done ? copyRuntime : choose).forceActiveFocus(Qt.OtherFocusReason);
    }

    Row {
        id: buttons

        spacing: 10

        PhaseButton {
            id: copyRuntime

            objectName: "copyRuntimeButton"
            visible: footer.scan.done
            title: footer.scan.copyRuntimeTitle
            restingTitle: "COPY RUNTIME"
            tint: Neon.violet
            toolTip: "Copy the total  \u00b7  Ctrl+C"
            onPressed: footer.actions.copyRuntime()
            onGoneWithFocus: footer.focusFirst()
        }

        PhaseButton {
            objectName: "copyFileListButton"
            visible: footer.scan.done
            title: footer.scan.copyFileListTitle
            restingTitle: "COPY FILE LIST"
            tint: Neon.violet
            toolTip: "Copy the names of the files  \u00b7  Ctrl+Shift+C"
            onPressed: footer.actions.copyFileList()
            onGoneWithFocus: footer.focusFirst()
        }

        PhaseButton {
            objectName: "zipButton"
            visible: footer.scan.done
            enabled: !footer.scan.zipWorking
            title: "ZIP\u2026"
            tint: Neon.indigo
            toolTip: "Pack the audio files into a zip archive  \u00b7  Ctrl+S"
            onPressed: footer.actions.zip()
            onGoneWithFocus: footer.focusFirst()
        }

        PhaseButton {
            id: choose

            objectName: "chooseButton"
            visible: !footer.scan.done
            title: "CHOOSE\u2026"
            tint: Neon.indigo
            toolTip: "Choose files, folders or archives  \u00b7  Ctrl+O"
            onPressed: footer.actions.choose()
            onGoneWithFocus: footer.focusFirst()
        }

        PhaseButton {
            objectName: "resetButton"
            visible: !footer.scan.idle
            title: "RESET"
            tint: Neon.inkDim
            toolTip: "Start anew  \u00b7  Esc"
            onPressed: footer.actions.reset()
            onGoneWithFocus: footer.focusFirst()
        }
    }

    ZipStatus {
        anchors.left: buttons.right
        anchors.leftMargin: buttons.spacing
        anchors.right: parent.right
        anchors.verticalCenter: buttons.verticalCenter
        scan: footer.scan
        actions: footer.actions
        time: footer.time
        animated: footer.animated
    }
}
