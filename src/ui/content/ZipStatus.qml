import QtQuick
import Velmora

// The line with the state of the packing. Once the archive is saved, it is a button that shows the archive.
Item {
    id: line

    required property ScanView scan
    required property Actions actions
    property real time: 0
    property bool animated: true

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
        Accessible.ignored: !enabled
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
        // All files are packed, and the archive is being completed: the line pulses once in 1.2 seconds.
        opacity: line.scan.zipWriting && line.animated ? 0.7 + 0.3 * Math.cos(line.time % 1.2 / 1.2 * 2 * Math.PI) : 1
        color: line.scan.zipTint
        Accessible.ignored: line.scan.zipSaved
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
