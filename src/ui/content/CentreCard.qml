import QtQuick
import Velmora

// The card with the panel of the present phase in its middle. It brightens while a drag hovers.
Item {
    id: card

    required property ScanView scan
    property real time: 0
    property bool animated: true
    property bool covered: false ///< by something that stands in its place

    signal filesWanted
    signal unreadableWanted

    property real highlight: scan.targeted ? 1 : 0 ///< from 0, at rest, to 1

    Behavior on highlight {
        objectName: "brightening"
        enabled: card.animated

        NumberAnimation {
            duration: 180
            easing.type: Easing.BezierSpline
            easing.bezierCurve: [0, 0, 0.58, 1, 1, 1] // ease-out
        }
    }

    // One fades into the other: each is painted once, which takes longer than a frame.
    Card {
        anchors.fill: parent
        opacity: 1 - card.highlight
        visible: opacity > 0
        minBorderOpacity: Neon.minBorderOpacity
    }

    Card {
        objectName: "litCard"
        anchors.fill: parent
        lit: true
        opacity: card.highlight
        visible: opacity > 0
        minBorderOpacity: Neon.minBorderOpacity
    }

    // The panel of one phase. It fades in, and away while that of the next phase appears.
    component Phase: Item {
        id: phase

        required property bool present
        required property bool animated
        property bool covered: false

        anchors.fill: parent
        anchors.margins: 30
        opacity: present ? 1 : 0
        visible: opacity > 0 && !covered

        Behavior on opacity {
            objectName: "fading"
            enabled: phase.animated

            NumberAnimation {
                duration: 150
            }
        }
    }

    Phase {
        present: card.scan.idle
        animated: card.animated
        covered: card.covered

        DropPrompt {
            objectName: "dropPrompt"
            anchors.centerIn: parent
            targeted: card.scan.targeted
            animated: card.animated
        }
    }

    Phase {
        present: card.scan.scanning
        animated: card.animated
        covered: card.covered

        ScanningPanel {
            objectName: "scanningPanel"
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            scan: card.scan.lastScanning
            time: card.time
            animated: card.animated
        }
    }

    Phase {
        present: card.scan.done
        animated: card.animated
        covered: card.covered

        ResultPanel {
            objectName: "resultPanel"
            anchors.centerIn: parent
            scan: card.scan.lastDone
            onFilesWanted: card.filesWanted()
            onUnreadableWanted: card.unreadableWanted()
        }
    }

    Phase {
        present: card.scan.empty
        animated: card.animated
        covered: card.covered

        EmptyPanel {
            objectName: "emptyPanel"
            anchors.centerIn: parent
            scan: card.scan.lastEmpty
            onUnreadableWanted: card.unreadableWanted()
        }
    }
}
