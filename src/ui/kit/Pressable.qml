import QtQuick
import Velmora

// What all controls have in common: they are pressed with the pointer, Space, Enter or by a screen reader,
// show a ring while they have the focus, and have a tool tip.
FocusScope {
    id: pressable

    required property string label
    property string toolTip: ""
    property bool toolTipBelow: false
    property real ringRadius: 12
    property real ringInset: -3 ///< from the edge inwards
    readonly property bool hovered: area.containsMouse
    readonly property bool down: area.containsPress

    signal pressed

    activeFocusOnTab: enabled
    Accessible.role: Accessible.Button
    Accessible.name: label
    Accessible.description: toolTip
    Accessible.focusable: enabled
    Accessible.onPressAction: pressable.pressed()
    Keys.onSpacePressed: pressable.pressed()
    Keys.onReturnPressed: pressable.pressed()
    Keys.onEnterPressed: pressable.pressed()

    MouseArea {
        id: area

        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: pressable.pressed()
    }

    Plate {
        anchors.fill: parent
        anchors.margins: pressable.ringInset
        border: Neon.ink
        radius: pressable.ringRadius
        visible: pressable.activeFocus
    }

    NeonToolTip {
        y: pressable.toolTipBelow ? pressable.height + 8 : -height - 8
        text: pressable.toolTip
        wanted: pressable.hovered
    }
}
