import QtQuick
import Velmora

Column {
    id: panel

    required property ScanView scan
    property real time: 0
    property bool animated: true

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

        // What assistive technology reads.
        readonly property string label: panel.scan.countText
        readonly property real value: progress
        readonly property real minimumValue: 0
        readonly property real maximumValue: 1

        objectName: "progressBar"
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(420, panel.width)
        height: 5
        progress: panel.scan.progress
        Accessible.role: Accessible.ProgressBar
        Accessible.name: label

        HoverHandler {
            id: pointer

            margin: 12 // points: the bar is thin
        }

        NeonToolTip {
            objectName: "unpackingToolTip"
            y: -height - 10
            text: panel.scan.unpackingText
            wanted: pointer.hovered
        }

        // Nothing is counted yet: a light goes along the track, from one end to the other in 1.6 seconds.
        Item {
            id: track

            readonly property real share: visible ? panel.time % 1.6 / 1.6 : 0

            objectName: "readingTrack"
            anchors.fill: parent
            clip: true
            visible: panel.scan.reading && panel.animated

            TrackLight {
                objectName: "readingLight"
                x: track.share * (track.width + width) - width
                width: 140
                height: track.height
            }
        }
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
