import QtQuick
import Velmora

Column {
    id: panel

    required property ScanView scan

    signal unreadableWanted

    spacing: 14

    SlashEmblem {
        objectName: "slashEmblem"
        anchors.horizontalCenter: parent.horizontalCenter
        size: 34
        tint: Neon.alert
        opacity: 0.9
    }

    Caption {
        objectName: "emptyTitle"
        anchors.horizontalCenter: parent.horizontalCenter
        text: "NO AUDIO FILES FOUND"
        size: 15
        weight: Font.Bold
        tracking: 2.5
        color: Neon.ink
    }

    Item {
        anchors.horizontalCenter: parent.horizontalCenter
        width: status.implicitWidth
        height: status.implicitHeight

        TextLink {
            objectName: "emptyLink"
            enabled: panel.scan.missingLine !== ""
            words: status
            toolTip: panel.scan.missingLine
            onPressed: panel.unreadableWanted()
        }

        Caption {
            id: status

            objectName: "emptyStatus"
            text: panel.scan.status
            size: 11
            color: Neon.inkDim
            Accessible.ignored: panel.scan.missingLine !== ""
        }
    }
}
