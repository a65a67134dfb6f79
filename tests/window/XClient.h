#pragma once

// A client of the X server beside the program: covers its window, asks what the window is, looks at the
// screen.

#include <QByteArray>
#include <QRect>
#include <QSize>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

struct xcb_connection_t;

namespace velmora::test {

/// What a screen shows: its pixels, row by row, each 0x00RRGGBB.
struct Picture {
    QSize size;
    std::vector<std::uint32_t> pixels;

    /// The smallest rectangle that holds every pixel for which `counts` holds; empty if there is none.
    QRect around(const std::function<bool(std::size_t pixel)>& counts) const;
};

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

    /// From here on the messages of startup notification are noted.
    void watchStartups();

    /// Those that came since, one after the other.
    QByteArray startupMessages();

    /// What the screen shows at the moment.
    Picture screen() const;

private:
    std::uint32_t atom(const QByteArray& name) const;

    xcb_connection_t* m_connection;
    std::uint32_t m_cover = 0;
    QByteArray m_startups;
};

} // namespace velmora::test
