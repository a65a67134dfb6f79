import QtQuick
import Velmora

// The line with the state of the packing. Once the archive is saved, it is a button that shows the archive.
Item {
    id: line

    required property ScanView scan
    required property Actions actions

    implicitHeight: words.implicitHeight + 20
    visible: words.text !== ""

    Pressable {
        objectName: "zipStatus"
        x: 4
        y: 4
        width: words.width + 12
        height: words.height + 12
        enabled: line.scan.zipSaved
        label: line.scan.zipText
        toolTip: enabled ? "Show the archive in its folder" : ""
        ringRadius: 9
        Accessible.role: enabled ? Accessible.Button : Accessible.StaticText
        onPressed: line.actions.revealZip()
    }

    Caption {
        id: words

        objectName: "zipLine"
        x: 10
        y: 10
        width: Math.min(implicitWidth, line.width - 20)
        text: line.scan.zipText
        size: 10
        weight: Font.Bold
        monospaced: true
        tracking: line.scan.zipTracking
        color: line.scan.zipTint
        Accessible.ignored: true
    }

    HoverHandler {
        id: pointer
    }

    NeonToolTip {
        objectName: "zipToolTip"
        y: -height - 8
        text: line.scan.zipSaved || words.width === words.implicitWidth ? "" : line.scan.zipText
        wanted: pointer.hovered
    }
}
