import QtQuick

// Words that a reader of the screen speaks as soon as they change; there is nothing of them to see.
Item {
    id: announcement

    property string text

    width: 1
    height: 1
    visible: false
    Accessible.role: Accessible.Notification
    onTextChanged: {
        Accessible.name = text; // before it comes up
        visible = false; // what is spoken is a notification that comes up
        visible = text !== "";
    }
}
