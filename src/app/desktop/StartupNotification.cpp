#include "app/desktop/StartupNotification.h"

#include "app/desktop/XServer.h"

#include <QWindow>

#include <algorithm>
#include <cstring>

namespace velmora {

namespace {

constexpr int partSize = 20;                 ///< bytes of text in one message
constexpr std::uint32_t fromApplication = 1; ///< the source of a request for the focus

/// The text that ends the sign, its NUL included.
QByteArray removal(QByteArray startupId) {
    startupId.replace('\\', "\\\\").replace('"', "\\\"");
    return "remove: ID=\"" + startupId + "\"" + '\0';
}

xcb_window_t rootOf(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

/// Its content is in units of so many bits.
xcb_client_message_event_t messageOf(xcb_window_t window, std::uint8_t bits) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = bits;
    event.window = window;
    return event;
}

void sendToRoot(xcb_connection_t* connection, const xcb_client_message_event_t& event, std::uint32_t mask) {
    xcb_send_event(connection, 0, rootOf(connection), mask, reinterpret_cast<const char*>(&event));
}

/// Sends `text` in as many messages as it takes.
void broadcast(xcb_connection_t* connection, xcb_window_t from, const QByteArray& text) {
    xcb_client_message_event_t event = messageOf(from, 8);
    event.type = atomOf(connection, "_NET_STARTUP_INFO_BEGIN");
    const xcb_atom_t next = atomOf(connection, "_NET_STARTUP_INFO");
    for (qsizetype at = 0; at < text.size(); at += partSize) {
        event.data = {};
        std::memcpy(event.data.data8, text.data() + at,
                    static_cast<std::size_t>(std::min<qsizetype>(partSize, text.size() - at)));
        sendToRoot(connection, event, XCB_EVENT_MASK_PROPERTY_CHANGE);
        event.type = next;
    }
}

void askForFocus(xcb_connection_t* connection, xcb_window_t window, std::uint32_t time) {
    xcb_client_message_event_t event = messageOf(window, 32);
    event.type = atomOf(connection, "_NET_ACTIVE_WINDOW");
    event.data.data32[0] = fromApplication;
    event.data.data32[1] = time;
    sendToRoot(connection, event, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
}

} // namespace

std::uint32_t timeOfStartup(const QByteArray& startupId) {
    const QByteArray mark = "_TIME";
    const qsizetype at = startupId.lastIndexOf(mark);
    return at < 0 ? 0 : startupId.mid(at + mark.size()).toUInt();
}

void completeStartup(QWindow& window, const QByteArray& startupId) {
    xcb_connection_t* const connection = xConnection();
    if (connection == nullptr || startupId.isEmpty()) {
        return;
    }
    const auto id = static_cast<xcb_window_t>(window.winId());
    broadcast(connection, id, removal(startupId));
    if (const std::uint32_t time = timeOfStartup(startupId); time != 0) {
        askForFocus(connection, id, time);
    }
    xcb_flush(connection);
}

} // namespace velmora
