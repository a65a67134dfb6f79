import QtQuick
import Velmora

// A line of one point inside the edge of the window, which sets it off from a dark desktop.
Item {
    id: edge

    component Line: Rectangle {
        color: Neon.indigo
        opacity: Math.max(0.55, Neon.minBorderOpacity)
    }

    Line {
        width: parent.width
        height: 1
    }

    Line {
        y: parent.height - 1
        width: parent.width
        height: 1
    }

    Line {
        y: 1
        width: 1
        height: parent.height - 2
    }

    Line {
        x: parent.width - 1
        y: 1
        width: 1
        height: parent.height - 2
    }
}
