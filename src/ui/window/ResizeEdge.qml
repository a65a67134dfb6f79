import QtQuick

// An edge or corner by which the window is resized.
MouseArea {
    id: edge

    required property Window window
    required property int edges

    implicitWidth: 5
    implicitHeight: 5
    onPressed: window.startSystemResize(edges)
}
