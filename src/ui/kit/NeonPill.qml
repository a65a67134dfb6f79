import QtQuick
import Velmora

// A small label; on request also a button.
Pressable {
    id: pill

    required property string text
    required property color tint
    property bool actionable: false

    label: text
    implicitWidth: words.implicitWidth + 20
    implicitHeight: words.implicitHeight + 10
    ringRadius: height
    enabled: actionable
    Accessible.ignored: !actionable

    Plate {
        anchors.fill: parent
        fill: pill.tint
        fillOpacity: 0.1
        border: pill.tint
        borderOpacity: 0.45
        capsule: true
    }

    Caption {
        id: words

        objectName: "pillWords"
        anchors.centerIn: parent
        text: pill.text
        size: 10
        weight: Font.Bold
        tracking: 1.6
        color: pill.tint
        Accessible.ignored: pill.actionable
    }
}
