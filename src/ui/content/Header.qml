import QtQuick
import Velmora

// The top row: logo, names, and the phase of the scan.
Item {
    id: header

    required property ScanView scan

    implicitHeight: logo.height

    BrandLogo {
        id: logo

        objectName: "brandLogo"
        height: 54
    }

    Column {
        anchors.left: logo.right
        anchors.leftMargin: 14
        anchors.verticalCenter: logo.verticalCenter
        spacing: 4

        Caption {
            objectName: "wordmark"
            text: "VELMORA"
            size: 17
            weight: Font.Black
            monospaced: true
            tracking: 4
            color: Neon.ink
        }

        Caption {
            objectName: "brandLine"
            text: "ORVENTA"
            size: 9
            weight: Font.DemiBold
            tracking: 3.4
            color: Neon.inkDim
        }
    }

    NeonPill {
        objectName: "phasePill"
        anchors.right: parent.right
        anchors.verticalCenter: logo.verticalCenter
        text: header.scan.pillText
        tint: header.scan.idle ? Neon.inkDim : header.scan.pillTint
    }
}
