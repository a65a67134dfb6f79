#pragma once

// A client of the X server beside the program: covers its window, and asks what the window is.

#include <QByteArray>
#include <QRect>

#include <cstdint>
#include <memory>

struct xcb_connection_t;

namespace velmora::test {

class XClient {
public:
    /// `display` as in the environment variable. A server that does not answer is a test failure.
    explicit XClient(const QByteArray& display);
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;
    ~XClient();

    /// Shows a window above all others, until `uncover`.
    void cover(const QRect& area);
    void uncover();

    /// Notes in a window's state that it is hidden, and nothing else, as window managers do.
    void setHidden(std::uint32_t window, bool hidden);

    /// The length of a window's property in bytes; 0 where it has none of this name.
    std::uint32_t lengthOf(const QByteArray& property, std::uint32_t window) const;

private:
    std::uint32_t atom(const QByteArray& name) const;

    xcb_connection_t* m_connection;
    std::uint32_t m_cover = 0;
};

} // namespace velmora::test
