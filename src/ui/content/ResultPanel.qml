import QtQuick
import Velmora

Column {
    id: panel

    required property ScanView scan

    signal filesWanted
    signal unreadableWanted

    spacing: 10

    Caption {
        objectName: "totalLabel"
        anchors.horizontalCenter: parent.horizontalCenter
        text: "TOTAL RUNTIME"
        size: 11
        weight: Font.Bold
        tracking: 4.5
        color: Neon.inkDim
    }

    Item {
        anchors.horizontalCenter: parent.horizontalCenter
        width: total.implicitWidth - 8
        height: total.implicitHeight - 8

        GlowText {
            id: total

            objectName: "totalClock"
            anchors.centerIn: parent
            text: panel.scan.totalClock
            // Whatever a broken file states, the clock stays in the card.
            size: Math.min(76, Math.floor(76 * 15 / Math.max(1, panel.scan.totalClock.length)))
            tint: Neon.violet
        }

        HoverHandler {
            id: pointer
        }

        NeonToolTip {
            objectName: "totalToolTip"
            y: -height
            text: panel.scan.windowTitle
            wanted: pointer.hovered
        }
    }

    Caption {
        objectName: "totalWords"
        anchors.horizontalCenter: parent.horizontalCenter
        text: panel.scan.totalWords
        size: 13
        weight: Font.Medium
        tracking: 2
        color: Neon.indigo
    }

    Item {
        anchors.horizontalCenter: parent.horizontalCenter
        width: count.implicitWidth + 12
        height: count.implicitHeight + 12

        TextLink {
            objectName: "countLink"
            anchors.centerIn: parent
            words: count
            toolTip: "Which files?  \u00b7  Ctrl+D"
            onPressed: panel.filesWanted()
        }

        Caption {
            id: count

            objectName: "countLine"
            anchors.centerIn: parent
            text: panel.scan.countLine
            size: 10
            weight: Font.Bold
            tracking: 2.2
            color: Neon.ink
            Accessible.ignored: true
        }
    }

    Item {
        anchors.horizontalCenter: parent.horizontalCenter
        width: unreadable.implicitWidth
        height: unreadable.implicitHeight
        visible: unreadable.text !== ""

        TextLink {
            objectName: "unreadableLink"
            words: unreadable
            toolTip: "Which, and why?"
            onPressed: panel.unreadableWanted()
        }

        Caption {
            id: unreadable

            objectName: "unreadableLine"
            text: panel.scan.unreadableLine
            size: 10
            monospaced: true
            color: Neon.alert
            opacity: 0.85
            Accessible.ignored: true
        }
    }
}
