import QtQuick

// An area by which the window is dragged.
MouseArea {
    id: mover

    required property Window window
    property point start

    onPressed: mouse => start = Qt.point(mouse.x, mouse.y)
    onPositionChanged: mouse => {
        if (Math.abs(mouse.x - start.x) + Math.abs(mouse.y - start.y) > 3)
            window.startSystemMove();
    }
}
