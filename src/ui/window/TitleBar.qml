import QtQuick
import Velmora

// The title bar of the window: menu at the left, the window's own buttons at the right.
Item {
    id: bar

    required property Window window
    // Along the edges of a screen the first and the last button reach its vertices, where they are hit blindly.
    readonly property bool filling: window.visibility === Window.Maximized || window.visibility === Window.FullScreen

    property bool checking: false ///< whether newer versions are asked for

    signal menuPressed

    function toggleMaximized() {
        if (window.visibility === Window.Maximized)
            window.showNormal();
        else
            window.showMaximized();
    }

    implicitHeight: 28

    WindowMover {
        anchors.fill: parent
        window: bar.window
        onDoubleClicked: bar.toggleMaximized()
    }

    TitleBarButton {
        objectName: "menuButton"
        x: bar.filling ? 0 : 4
        sign: TitleBarGlyph.Menu
        label: "Menu"
        toolTip: "Menu  \u00b7  F10"
        onPressed: bar.menuPressed()
    }

    Caption {
        objectName: "checkingLine"
        x: 46
        anchors.verticalCenter: parent.verticalCenter
        visible: bar.checking
        text: "CHECKING\u2026"
        size: 9
        weight: Font.Bold
        tracking: 1.6
        color: Neon.inkDim
    }

    Row {
        anchors.right: parent.right
        anchors.rightMargin: bar.filling ? 0 : 4

        TitleBarButton {
            objectName: "minimizeButton"
            sign: TitleBarGlyph.Minimize
            label: "Minimise"
            onPressed: bar.window.showMinimized()
        }

        TitleBarButton {
            objectName: "maximizeButton"
            sign: bar.window.visibility === Window.Maximized ? TitleBarGlyph.Restore : TitleBarGlyph.Maximize
            label: bar.window.visibility === Window.Maximized ? "Restore" : "Maximise"
            onPressed: bar.toggleMaximized()
        }

        TitleBarButton {
            objectName: "closeButton"
            sign: TitleBarGlyph.Close
            label: "Close"
            onPressed: bar.window.close()
        }
    }
}
