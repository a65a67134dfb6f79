pragma ComponentBehavior: Bound

import QtQuick
import Velmora

// Where the panel is: the names on the way to the folder, each of which leads there. They give way to a field
// while a path is typed.
FocusScope {
    id: bar

    required property FilePanel panel
    property int marked: -1 ///< the proposal that Enter takes

    /// Lets the user type a path that begins with `text`.
    function type(text) {
        panel.typing = true;
        panel.typed = text;
        field.text = text;
        field.cursorPosition = text.length;
        field.forceActiveFocus(Qt.ShortcutFocusReason);
    }

    function take(index) {
        const proposal = panel.proposals[Math.max(index, 0)];
        if (proposal !== undefined)
            type(proposal);
    }

    implicitHeight: 30
    z: 1

    PanelButton {
        id: back

        sign: PanelGlyph.Back
        label: "Back"
        toolTip: "Back  \u00b7  Alt+Left"
        toolTipBelow: true
        enabled: bar.panel.canGoBack
        onPressed: bar.panel.goBack()
    }

    PanelButton {
        id: up

        anchors.left: back.right
        sign: PanelGlyph.Up
        label: "Up"
        toolTip: "The folder above  \u00b7  Alt+Up"
        toolTipBelow: true
        enabled: bar.panel.crumbs.length > 1
        onPressed: bar.panel.goUp()
    }

    Flickable {
        id: crumbs

        anchors.left: up.right
        anchors.right: parent.right
        anchors.leftMargin: 6
        height: parent.height
        clip: true
        visible: !bar.panel.typing
        boundsBehavior: Flickable.StopAtBounds
        flickableDirection: Flickable.HorizontalFlick
        contentWidth: names.width
        contentX: Math.max(0, contentWidth - width) // the end is what tells

        MouseArea {
            width: crumbs.width
            height: crumbs.height
            cursorShape: Qt.IBeamCursor
            onClicked: bar.type(bar.panel.folderText)
        }

        Row {
            id: names

            Repeater {
                model: bar.panel.crumbs

                delegate: PanelButton {
                    required property int index
                    required property string modelData

                    title: modelData
                    lit: index === bar.panel.crumbs.length - 1
                    onPressed: bar.panel.openCrumb(index)
                }
            }
        }
    }

    LineField {
        id: field

        anchors.fill: crumbs
        visible: bar.panel.typing
        label: "Path"
        onEdited: bar.panel.typed = text
        onTextChanged: bar.marked = -1
        Keys.onEscapePressed: bar.panel.typing = false
        Keys.onReturnPressed: event => event.modifiers & Qt.ControlModifier ? bar.panel.accept()
                                       : bar.marked < 0 ? bar.panel.submit() : bar.take(bar.marked)
        Keys.onEnterPressed: event => Keys.returnPressed(event)
        Keys.onTabPressed: event => {
            event.accepted = bar.panel.proposals.length > 0;
            if (event.accepted)
                bar.take(bar.marked);
        }
        Keys.onDownPressed: bar.marked = Math.min(bar.marked + 1, bar.panel.proposals.length - 1)
        Keys.onUpPressed: bar.marked = Math.max(bar.marked - 1, -1)
    }

    Plate {
        x: field.x
        y: field.height + 4
        width: field.width
        height: proposals.implicitHeight + 8
        visible: field.visible && field.activeFocus && bar.panel.proposals.length > 0
        fill: Neon.bgMid
        border: Neon.indigo
        borderOpacity: 0.5
        radius: 7

        Column {
            id: proposals

            x: 4
            y: 4
            width: parent.width - 8

            Repeater {
                model: bar.panel.proposals

                delegate: Item {
                    id: proposal

                    required property int index
                    required property string modelData

                    width: proposals.width
                    height: 24
                    Accessible.role: Accessible.ListItem
                    Accessible.name: modelData

                    Plate {
                        anchors.fill: parent
                        visible: proposal.index === bar.marked || pointer.containsMouse
                        fill: Neon.indigo
                        fillOpacity: 0.35
                        radius: 5
                    }

                    PanelText {
                        anchors.fill: parent
                        anchors.leftMargin: 6
                        anchors.rightMargin: 6
                        elide: Text.ElideLeft
                        text: proposal.modelData
                    }

                    MouseArea {
                        id: pointer

                        anchors.fill: parent
                        hoverEnabled: true
                        onClicked: bar.take(proposal.index)
                    }
                }
            }
        }
    }
}
