import QtQuick

// A text that a screen reader speaks when it has changed. It is invisible.
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

    // A screen reader asks for the text some time after it was told of a change: of changes that follow each
    // other quickly, only the last is spoken.
    Timer {
        id: rest

        interval: 200
        onTriggered: {
            announcement.Accessible.name = announcement.text;
            announcement.visible = announcement.text !== ""; // a notification is spoken when it appears
        }
    }
}
