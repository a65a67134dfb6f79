#pragma once

// What is asked of an X server beside what Qt asks.

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace velmora {

/// Qt's own connection; null where Qt shows its windows elsewhere.
inline xcb_connection_t* xConnection() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr; // also none on Qt's offscreen platform
}

/// What the X server answers belongs to the caller.
template <typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
    return {reply, &std::free};
}

/// 0 when the server does not answer.
inline xcb_atom_t atomOf(xcb_connection_t* connection, std::string_view name) {
    const auto asked = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(connection, asked, nullptr));
    return reply ? reply->atom : 0;
}

} // namespace velmora
