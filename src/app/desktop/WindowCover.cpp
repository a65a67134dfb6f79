#include "app/desktop/WindowCover.h"

#include "app/desktop/XServer.h"

#include <QWindow>

#include <algorithm>
#include <span>

namespace velmora {

namespace {

constexpr std::uint8_t eventKind = 0x7F; ///< without the bit of events that other clients send
constexpr std::uint32_t mostStates = 64; ///< of a window at once

} // namespace

WindowCover::WindowCover(QWindow* window)
    : QObject(window) {
    m_connection = xConnection();
    if (m_connection != nullptr) {
        m_window = static_cast<std::uint32_t>(window->winId());
        watch();
    }
}

WindowCover::~WindowCover() = default; // which removes the filter

void WindowCover::watch() {
    m_stateAtom = atomOf(m_connection, "_NET_WM_STATE");
    m_hiddenAtom = atomOf(m_connection, "_NET_WM_STATE_HIDDEN");
    const auto asked = xcb_get_window_attributes(m_connection, m_window);
    const auto reply = owned(xcb_get_window_attributes_reply(m_connection, asked, nullptr));
    if (!reply) {
        return;
    }
    const std::uint32_t events = reply->your_event_mask | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    xcb_change_window_attributes(m_connection, m_window, XCB_CW_EVENT_MASK, &events);
    xcb_flush(m_connection);
    QCoreApplication::instance()->installNativeEventFilter(this);
}

bool WindowCover::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const int kind = static_cast<const xcb_generic_event_t*>(message)->response_type & eventKind;
    if (kind == XCB_VISIBILITY_NOTIFY) {
        const auto& event = *static_cast<const xcb_visibility_notify_event_t*>(message);
        if (event.window == m_window) {
            set(m_obscured, event.state == XCB_VISIBILITY_FULLY_OBSCURED);
        }
    } else if (kind == XCB_PROPERTY_NOTIFY) {
        const auto& event = *static_cast<const xcb_property_notify_event_t*>(message);
        if (event.window == m_window && event.atom == m_stateAtom) {
            set(m_hidden, isHidden());
        }
    }
    return false; // for Qt as well
}

bool WindowCover::isHidden() const {
    const auto asked = xcb_get_property(m_connection, 0, m_window, m_stateAtom, XCB_ATOM_ATOM, 0, mostStates);
    const auto reply = owned(xcb_get_property_reply(m_connection, asked, nullptr));
    if (!reply || reply->format != 32) {
        return false;
    }
    const std::span states(static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get())),
                           static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) /
                               sizeof(xcb_atom_t));
    return std::ranges::find(states, m_hiddenAtom) != states.end();
}

void WindowCover::set(bool& which, bool value) {
    const bool before = covered();
    which = value;
    if (covered() != before) {
        emit changed();
    }
}

} // namespace velmora
