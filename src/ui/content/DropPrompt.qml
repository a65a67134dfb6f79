import QtQuick
import Velmora

Column {
    id: prompt

    required property bool targeted
    property bool animated: true

    spacing: 18

    Spring {
        id: swell

        target: prompt.targeted ? 1.08 : 1
        response: 0.35
        dampingFraction: 0.6
        animated: prompt.animated
    }

    DropEmblem {
        objectName: "dropEmblem"
        anchors.horizontalCenter: parent.horizontalCenter
        magnification: swell.value
    }

    Caption {
        objectName: "dropCaption"
        anchors.horizontalCenter: parent.horizontalCenter
        text: "DRAG AUDIO FILES, FOLDER, OR ZIP"
        size: 17
        weight: Font.Bold
        tracking: 3
        color: Neon.ink
    }
}
