// Moving, resizing, dropping and copying on Wayland. Only the compositor knows where its windows are, and
// tells nobody; so they are looked for on its screen, which is an X server's.

#include "tests/window/WindowTest.h"
#include "tests/window/XClient.h"

#include <QSize>

namespace velmora::test {
namespace {

/// Whether `moved` goes at least as far as `by`, in the same direction.
bool goesAsFar(const QPoint& moved, const QPoint& by) {
    return QPoint::dotProduct(moved, by) >= QPoint::dotProduct(by, by);
}

constexpr QPoint middle{640, 512};            // of the screen; the window covers it wherever it is
constexpr std::uint32_t wallpaper = 0x204060; // as Desktop tells the compositor

class WaylandPlaceTest : public WindowTest {
protected:
    WaylandPlaceTest()
        : WindowTest(Bus::present, Display::wayland) {}

    void SetUp() override {
        EXPECT_TRUE(comesTrue([this] { // the compositor has drawn all of its screen
            desktop.point({0, 0});     // it is told how far the pointer moves, and stops it at the edge
            desktop.point(middle);
            const QRect pointer = place();
            return pointer.isNull() ||
                   QRect(middle - QPoint(40, 40), middle + QPoint(40, 40)).contains(pointer);
        }));
        velmora = start({tone("a.wav", 3)});
        awaitShown("00:00:03");
        EXPECT_TRUE(comesTrue([this] { return place().size() == QSize(940, 728); }));
        first = place();
    }

    /// Where the window is: what is not the wallpaper. The pointer is in the middle, and shown there.
    QRect place() const {
        const Picture now = server.screen();
        return now.around([&](std::size_t pixel) { return now.pixels[pixel] != wallpaper; });
    }

    /// Drags from a place and waits until `isRight` holds; see FrameTest::drag.
    void drag(const QPoint& from, const QPoint& by, const std::function<bool()>& isRight) const {
        desktop.pull(from, from + by);
        bool back = false;
        EXPECT_TRUE(comesTrue([&] {
            back = !back; // the compositor moves the window only while the pointer moves
            desktop.point(from + by * (back ? 0.8 : 1.0));
            return place() != first;
        }));
        desktop.point(from + 2 * by);
        desktop.letGo();
        desktop.point(middle);
        EXPECT_TRUE(comesTrue(isRight))
            << place().x() << ' ' << place().y() << ' ' << place().width() << ' ' << place().height();
    }

    XClient server{desktop.environment().value("DISPLAY").toLatin1()};
    QRect first;
};

TEST_F(WaylandPlaceTest, MovesByItsTitleBarAndShrinksByItsCorner) {
    const QPoint inwards(first.x() > 170 ? -30 : 30, first.y() > 148 ? -30 : 30);
    drag(first.topLeft() + QPoint(470, 14), inwards, [&] {
        return goesAsFar(place().topLeft() - first.topLeft(), inwards) && place().size() == first.size();
    });
    first = place();
    constexpr QPoint smaller(-25, -15);
    drag(first.bottomRight() - QPoint(2, 2), smaller, [&] {
        return goesAsFar(place().bottomRight() - first.bottomRight(), smaller) &&
               place().topLeft() == first.topLeft();
    });
    EXPECT_TRUE(comesTrue([this] { return window().size() == place().size(); }));
}

TEST_F(WaylandPlaceTest, TakesADropAndGivesToTheClipboard) {
    const QStringList data = {"text/uri-list", url(tone("b.wav", 4).toStdString()) + "\r\n"};
    Process source(DRAG_SOURCE, data, desktop.environment());
    ASSERT_EQ(source.nextLine(), "ready");
    QRect from;
    EXPECT_TRUE(comesTrue([&] {
        const Picture now = server.screen();
        from = now.around([&](std::size_t pixel) { return now.pixels[pixel] == 0xFF00FF; });
        return from.size() == QSize(80, 80);
    }));
    const bool isAtTheLeft = from.center().x() < first.center().x();
    desktop.pull(from.center(), first.center() + QPoint(isAtTheLeft ? 200 : -200, 0));
    EXPECT_EQ(source.nextLine(), "offered copy");
    desktop.letGo();
    EXPECT_EQ(source.nextLine(), "ended copy");
    awaitShown("00:00:04");

    desktop.click(first.topLeft() + QPoint(100, 14)); // which gives it the keyboard
    desktop.press("ctrl+c");
    awaitClipboard("TOTAL RUNTIME  00:00:04   (4 sec)\n1 audio file — B.WAV");
}

} // namespace
} // namespace velmora::test
