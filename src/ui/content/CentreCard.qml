import QtQuick
import Velmora

// The card with the panel of the present phase in its middle. It brightens while a drag hovers.
Item {
    id: card

    required property ScanView scan
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
    }

    Card {
        objectName: "litCard"
        anchors.fill: parent
        lit: true
        opacity: card.highlight
        visible: opacity > 0
    }

    Item {
        id: inside

        visible: !card.covered

        anchors.fill: parent
        anchors.margins: 30

        DropPrompt {
            objectName: "dropPrompt"
            anchors.centerIn: parent
            visible: card.scan.idle
            targeted: card.scan.targeted
            animated: card.animated
        }

        ScanningPanel {
            objectName: "scanningPanel"
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            visible: card.scan.scanning
            scan: card.scan
        }

        ResultPanel {
            objectName: "resultPanel"
            anchors.centerIn: parent
            visible: card.scan.done
            scan: card.scan
            onFilesWanted: card.filesWanted()
            onUnreadableWanted: card.unreadableWanted()
        }

        EmptyPanel {
            objectName: "emptyPanel"
            anchors.centerIn: parent
            visible: card.scan.empty
            scan: card.scan
            onUnreadableWanted: card.unreadableWanted()
        }
    }
}
