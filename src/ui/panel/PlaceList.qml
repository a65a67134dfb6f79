pragma ComponentBehavior: Bound

import QtQuick
import Velmora

// The folders that one press leads to.
ListView {
    id: list

    required property FilePanel panel

    activeFocusOnTab: true
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: true
    currentIndex: 0
    model: panel.places
    Accessible.role: Accessible.List
    Accessible.name: "Places"
    Keys.onReturnPressed: if (currentIndex >= 0)
        panel.openPlace(currentIndex)
    Keys.onEnterPressed: event => Keys.returnPressed(event)
    Keys.onSpacePressed: event => Keys.returnPressed(event)

    delegate: Item {
        id: place

        required property int index
        required property var modelData
        readonly property bool first: index === 0 || list.panel.places[index - 1].group !== modelData.group

        objectName: "place"
        width: list.width
        height: (first ? 26 : 0) + 27
        Accessible.role: Accessible.ListItem
        Accessible.name: modelData.title
        Accessible.onPressAction: list.panel.openPlace(index)

        Caption {
            x: 8
            y: 8
            visible: place.first
            text: place.modelData.group
            size: 9
            weight: Font.Bold
            tracking: 1.5
            color: Neon.inkDim
        }

        Item {
            y: place.first ? 26 : 0
            width: parent.width
            height: 27

            Plate {
                anchors.fill: parent
                fill: Neon.indigo
                fillOpacity: place.modelData.here ? 0.3 : pointer.containsMouse ? 0.15 : 0
                border: Neon.ink
                borderOpacity: list.activeFocus && list.currentIndex === place.index ? 1 : 0
                radius: 6
            }

            PanelText {
                x: 8
                width: parent.width - 16
                height: parent.height
                text: place.modelData.title
            }

            MouseArea {
                id: pointer

                anchors.fill: parent
                hoverEnabled: true
                cursorShape: Qt.PointingHandCursor
                onClicked: {
                    list.currentIndex = place.index;
                    list.panel.openPlace(place.index);
                }
            }
        }
    }
}
