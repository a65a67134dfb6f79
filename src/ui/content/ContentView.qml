import QtQuick
import Velmora

// The content of the window: moving scenery, and over it header, card, spectrum and footer.
Item {
    id: content

    required property ScanView scan
    required property Actions actions
    required property real time
    property bool animated: true

    implicitWidth: 940
    implicitHeight: 700

    Backdrop {
        objectName: "backdrop"
        anchors.fill: parent
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
        animated: content.animated
    }

    SpectrumStrip {
        id: spectrum

        objectName: "spectrumStrip"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: footer.top
        anchors.leftMargin: 26
        anchors.rightMargin: 26
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
    }
}
