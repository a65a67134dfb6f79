import QtQuick

// The edges and corners of the window, each of which resizes it.
Item {
    id: frame

    required property Window window

    ResizeEdge {
        anchors.left: parent.left
        height: parent.height
        window: frame.window
        edges: Qt.LeftEdge
        cursorShape: Qt.SizeHorCursor
    }

    ResizeEdge {
        anchors.right: parent.right
        height: parent.height
        window: frame.window
        edges: Qt.RightEdge
        cursorShape: Qt.SizeHorCursor
    }

    ResizeEdge {
        anchors.top: parent.top
        width: parent.width
        window: frame.window
        edges: Qt.TopEdge
        cursorShape: Qt.SizeVerCursor
    }

    ResizeEdge {
        anchors.bottom: parent.bottom
        width: parent.width
        window: frame.window
        edges: Qt.BottomEdge
        cursorShape: Qt.SizeVerCursor
    }

    ResizeEdge {
        anchors.left: parent.left
        anchors.top: parent.top
        implicitWidth: 10
        implicitHeight: 10
        window: frame.window
        edges: Qt.LeftEdge | Qt.TopEdge
        cursorShape: Qt.SizeFDiagCursor
    }

    ResizeEdge {
        anchors.right: parent.right
        anchors.top: parent.top
        implicitWidth: 10
        implicitHeight: 10
        window: frame.window
        edges: Qt.RightEdge | Qt.TopEdge
        cursorShape: Qt.SizeBDiagCursor
    }

    ResizeEdge {
        anchors.left: parent.left
        anchors.bottom: parent.bottom
        implicitWidth: 10
        implicitHeight: 10
        window: frame.window
        edges: Qt.LeftEdge | Qt.BottomEdge
        cursorShape: Qt.SizeBDiagCursor
    }

    ResizeEdge {
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        implicitWidth: 10
        implicitHeight: 10
        window: frame.window
        edges: Qt.RightEdge | Qt.BottomEdge
        cursorShape: Qt.SizeFDiagCursor
    }
}
