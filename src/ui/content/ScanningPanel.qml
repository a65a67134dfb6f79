import QtQuick
import Velmora

Column {
    id: panel

    required property ScanView scan

    spacing: 14

    Caption {
        objectName: "scanningStatus"
        anchors.horizontalCenter: parent.horizontalCenter
        text: panel.scan.scanningStatus
        size: 13
        weight: Font.Bold
        tracking: 3
        color: Neon.violet
    }

    GlowText {
        objectName: "scanningCount"
        anchors.horizontalCenter: parent.horizontalCenter
        text: panel.scan.countText
        size: 44
        tint: Neon.indigo
    }

    ProgressCapsule {
        id: bar

        // What assistive technology reads of a progress bar.
        readonly property real value: progress
        readonly property real minimumValue: 0
        readonly property real maximumValue: 1

        objectName: "progressBar"
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(420, panel.width)
        height: 5
        progress: panel.scan.progress
        Accessible.role: Accessible.ProgressBar
        Accessible.name: panel.scan.countText
    }

    Caption {
        objectName: "scanningDetail"
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(implicitWidth, bar.width)
        text: panel.scan.source
        keepsEnd: true
        size: 11
        monospaced: true
        tracking: 1.2
        color: Neon.inkDim
    }
}
