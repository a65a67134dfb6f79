import QtQuick
import Velmora

// A line of text of the panel. The alignment is set explicitly: otherwise Qt asks the keyboard how an empty text
// is aligned, and crashes on Wayland without a keyboard.
Text {
    textFormat: Text.PlainText
    horizontalAlignment: Text.AlignLeft
    verticalAlignment: Text.AlignVCenter
    elide: Text.ElideRight
    maximumLineCount: 1
    renderType: Text.NativeRendering
    color: Neon.ink
    font.family: "Inter"
    font.pixelSize: 12
    Accessible.ignored: true
}
