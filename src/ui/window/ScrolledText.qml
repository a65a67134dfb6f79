import QtQuick
import Velmora

// A text of any length: what does not fit into 14 lines is scrolled to, and a bar beside it shows where one is.
Item {
    id: scrolled

    required property string text
    readonly property alias lineCount: words.lineCount
    readonly property real lineHeight: words.implicitHeight / words.lineCount

    /// Goes so many lines down, or up where it is negative, as far as there are any.
    function scroll(lines) {
        const way = view.contentY + lines * lineHeight;
        view.contentY = Math.max(0, Math.min(way, view.contentHeight - view.height));
    }

    implicitHeight: Math.min(words.implicitHeight, Math.floor(14 * lineHeight))
    onTextChanged: view.contentY = 0

    Flickable {
        id: view

        objectName: "scrolledView"
        anchors.fill: parent
        contentHeight: words.implicitHeight
        clip: true
        boundsBehavior: Flickable.StopAtBounds

        // The alignment is set explicitly: otherwise Qt asks the keyboard how an empty text is aligned,
        // and crashes on Wayland without a keyboard.
        Text {
            id: words

            width: view.width
            text: scrolled.text
            textFormat: Text.PlainText
            horizontalAlignment: Text.AlignLeft
            wrapMode: Text.Wrap
            renderType: Text.NativeRendering
            color: Neon.inkDim
            font.family: "Inter"
            font.pixelSize: 13
            lineHeight: 1.25
        }
    }

    ScrollBar {
        objectName: "scrollBar"
        x: parent.width + 8
        height: parent.height
        flickable: view
    }
}
