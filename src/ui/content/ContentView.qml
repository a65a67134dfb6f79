import QtQuick
import Velmora

// The content of the window: moving scenery, and over it header, card, spectrum and footer.
Item {
    id: content

    required property ScanView scan
    required property Actions actions
    required property real time
    property bool animated: true
    property real headroom: 0 ///< how far the backdrop goes on above, in points
    property bool cardCovered: false
    readonly property Item card: card

    signal filesWanted
    signal unreadableWanted

    implicitWidth: 940
    implicitHeight: 700

    Backdrop {
        objectName: "backdrop"
        anchors.fill: parent
        anchors.topMargin: -content.headroom
    }

    WaveField {
        objectName: "waveField"
        anchors.fill: parent
        anchors.topMargin: 40
        opacity: 0.88
        intensity: content.scan.intensity
        time: content.time
    }

    Header {
        id: header

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 26
        scan: content.scan
    }

    CentreCard {
        id: card

        objectName: "card"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: header.bottom
        anchors.bottom: spectrum.top
        anchors.leftMargin: 26
        anchors.rightMargin: 26
        anchors.topMargin: 20
        anchors.bottomMargin: 16
        scan: content.scan
        time: content.time
        animated: content.animated
        covered: content.cardCovered
        onFilesWanted: content.filesWanted()
        onUnreadableWanted: content.unreadableWanted()
    }

    // It ends with the room after its last bar: moved by half of that, the bars are centred below the card.
    SpectrumStrip {
        id: spectrum

        objectName: "spectrumStrip"
        x: 26 + Math.floor(roomAfterBars / 2)
        width: parent.width - 52
        anchors.bottom: footer.top
        anchors.bottomMargin: 16
        height: 34
        intensity: content.scan.intensity
        time: content.time
    }

    Footer {
        id: footer

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 26
        scan: content.scan
        actions: content.actions
        time: content.time
        animated: content.animated
    }
}
