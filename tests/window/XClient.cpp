#include "tests/window/XClient.h"

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdlib>
#include <cstring>

namespace velmora::test {

QRect Picture::around(const std::function<bool(std::size_t pixel)>& counts) const {
    QRect area;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (counts(i)) {
            const auto width = static_cast<std::size_t>(size.width());
            area |= QRect(static_cast<int>(i % width), static_cast<int>(i / width), 1, 1);
        }
    }
    return area;
}

XClient::XClient(const QByteArray& display)
    : m_connection(xcb_connect(display.constData(), nullptr)) {
    EXPECT_EQ(xcb_connection_has_error(m_connection), 0);
}

XClient::~XClient() {
    xcb_disconnect(m_connection);
}

void XClient::cover(const QRect& area) {
    const xcb_screen_t* const screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    const std::array<std::uint32_t, 2> values = {screen->white_pixel, 1}; // no window manager is asked
    m_cover = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_cover, screen->root,
                      static_cast<std::int16_t>(area.x()), static_cast<std::int16_t>(area.y()),
                      static_cast<std::uint16_t>(area.width()), static_cast<std::uint16_t>(area.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values.data());
    xcb_map_window(m_connection, m_cover);
    xcb_flush(m_connection);
}

void XClient::uncover() {
    xcb_destroy_window(m_connection, m_cover);
    xcb_flush(m_connection);
}

void XClient::setHidden(std::uint32_t window, bool hidden) {
    const std::uint32_t state = atom("_NET_WM_STATE_HIDDEN");
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32,
                        hidden ? 1 : 0, &state);
    xcb_flush(m_connection);
}

std::uint32_t XClient::lengthOf(const QByteArray& property, std::uint32_t window) const {
    xcb_get_property_reply_t* const answer = xcb_get_property_reply(
        m_connection,
        xcb_get_property(m_connection, 0, window, atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, 0), nullptr);
    const std::uint32_t length = answer->bytes_after;
    std::free(answer);
    return length;
}

void XClient::watchStartups() {
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE; // with which the messages are sent
    xcb_change_window_attributes(m_connection,
                                 xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root,
                                 XCB_CW_EVENT_MASK, &events);
    xcb_flush(m_connection);
}

QByteArray XClient::startupMessages() {
    const std::uint32_t begin = atom("_NET_STARTUP_INFO_BEGIN");
    const std::uint32_t more = atom("_NET_STARTUP_INFO");
    while (xcb_generic_event_t* const event = xcb_poll_for_event(m_connection)) {
        const auto& message = *reinterpret_cast<const xcb_client_message_event_t*>(event);
        if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE &&
            (message.type == begin || message.type == more)) {
            const auto* const part = reinterpret_cast<const char*>(message.data.data8);
            m_startups += QByteArray(part, static_cast<qsizetype>(::strnlen(part, 20)));
        }
        std::free(event);
    }
    return m_startups;
}

Picture XClient::screen() const {
    const xcb_screen_t* const screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    xcb_get_image_reply_t* const answer =
        xcb_get_image_reply(m_connection,
                            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, 0, 0,
                                          screen->width_in_pixels, screen->height_in_pixels, ~0U),
                            nullptr);
    Picture picture{{screen->width_in_pixels, screen->height_in_pixels}, {}};
    picture.pixels.resize(std::size_t{screen->width_in_pixels} * screen->height_in_pixels);
    const std::size_t bytes = picture.pixels.size() * sizeof(std::uint32_t);
    EXPECT_EQ(static_cast<std::size_t>(xcb_get_image_data_length(answer)), bytes);
    std::memcpy(picture.pixels.data(), xcb_get_image_data(answer), bytes);
    std::free(answer);
    for (std::uint32_t& pixel : picture.pixels) {
        pixel &= 0x00FFFFFF;
    }
    return picture;
}

std::uint32_t XClient::atom(const QByteArray& name) const {
    xcb_intern_atom_reply_t* const answer = xcb_intern_atom_reply(
        m_connection,
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.constData()), nullptr);
    const std::uint32_t atom = answer->atom;
    std::free(answer);
    return atom;
}

} // namespace velmora::test
