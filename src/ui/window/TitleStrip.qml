import QtQuick
import Velmora

// The strip on top of the window: menu at the left, the window's own buttons at the right.
Item {
    id: strip

    required property Window window

    signal menuPressed

    function toggleMaximized() {
        if (window.visibility === Window.Maximized)
            window.showNormal();
        else
            window.showMaximized();
    }

    implicitHeight: 28

    Rectangle {
        anchors.fill: parent
        color: Neon.bgMid
    }

    WindowMover {
        anchors.fill: parent
        window: strip.window
        onDoubleClicked: strip.toggleMaximized()
    }

    StripButton {
        objectName: "menuButton"
        x: 4
        sign: StripGlyph.Menu
        label: "Menu"
        toolTip: "Menu  \u00b7  F10"
        onPressed: strip.menuPressed()
    }

    Row {
        anchors.right: parent.right
        anchors.rightMargin: 4

        StripButton {
            objectName: "minimizeButton"
            sign: StripGlyph.Minimize
            label: "Minimise"
            onPressed: strip.window.showMinimized()
        }

        StripButton {
            objectName: "maximizeButton"
            sign: strip.window.visibility === Window.Maximized ? StripGlyph.Restore : StripGlyph.Maximize
            label: strip.window.visibility === Window.Maximized ? "Restore" : "Maximise"
            onPressed: strip.toggleMaximized()
        }

        StripButton {
            objectName: "closeButton"
            sign: StripGlyph.Close
            label: "Close"
            onPressed: strip.window.close()
        }
    }
}
