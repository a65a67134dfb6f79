import QtQuick
import Velmora

// A setting that is on or off: a switch, its knob at the right when it is on, and what it means. Pressing any
// part of the line asks for the other state.
Pressable {
    id: line

    required property string title
    required property bool on

    label: title
    implicitWidth: words.x + words.implicitWidth
    implicitHeight: Math.max(track.height, words.implicitHeight) + 6
    ringRadius: 10
    ringInset: -6
    Accessible.role: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: on
    Accessible.onToggleAction: line.pressed()

    Plate {
        id: track

        width: 34
        height: 18
        anchors.verticalCenter: parent.verticalCenter
        capsule: true
        fill: line.on ? Neon.violet : Neon.ink
        fillOpacity: line.on ? 0.85 : line.hovered ? 0.1 : 0.04
        border: line.on ? Neon.violet : Neon.inkDim
        borderOpacity: line.hovered ? 1 : 0.6

        Plate {
            objectName: "switchKnob"
            x: line.on ? track.width - width - 3 : 3
            y: 3
            width: 12
            height: 12
            capsule: true
            fill: line.on ? Neon.bgMid : Neon.inkDim
            borderOpacity: 0
        }
    }

    Caption {
        id: words

        x: track.width + 12
        anchors.verticalCenter: parent.verticalCenter
        text: line.title
        size: 13
        color: Neon.ink
        Accessible.ignored: true // the line has its name
    }
}
