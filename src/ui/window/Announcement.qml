import QtQuick

// Words that a reader of the screen speaks when they have changed; there is nothing of them to see.
Item {
    id: announcement

    property string text

    width: 1
    height: 1
    visible: false
    Accessible.role: Accessible.Notification
    onTextChanged: {
        visible = false;
        rest.restart();
    }

    // A reader asks for the words after it heard of the change: of changes in a flow only the last is told.
    Timer {
        id: rest

        interval: 200
        onTriggered: {
            announcement.Accessible.name = announcement.text;
            announcement.visible = announcement.text !== ""; // what comes up is spoken
        }
    }
}
