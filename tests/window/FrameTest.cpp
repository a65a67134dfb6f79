// The window's own title bar, edges and background. The window manager draws no frame around it.

#include "tests/window/WindowTest.h"

#include <QSize>

namespace velmora::test {
namespace {

constexpr QSize minimumSize{880, 660 + 28};
constexpr QSize firstSize{940, 700 + 28};
constexpr QSize screenSize{1280, 1024};

/// Whether `moved` goes at least as far as `by`, in the same direction.
bool reaches(const QPoint& moved, const QPoint& by) {
    return QPoint::dotProduct(moved, by) >= QPoint::dotProduct(by, by);
}

class FrameTest : public WindowTest {
protected:
    void SetUp() override {
        open();
        awaitPlace([](const QRect& place) { return place.size() == firstSize; });
        first = window();
    }

    void awaitPlace(const std::function<bool(const QRect&)>& isRight) const {
        EXPECT_TRUE(comesTrue([&] { return isRight(window()); }))
            << window().x() << ' ' << window().y() << ' ' << window().width() << ' ' << window().height();
    }

    void awaitSize(const QSize& size) const {
        awaitPlace([size](const QRect& place) { return place.size() == size; });
    }

    /// Where the X server has the window. The program itself learns that only after the drag.
    QByteArray serversGeometry() const {
        return run("xdotool", {"getactivewindow", "getwindowgeometry"}, desktop.environment());
    }

    /// Drags from a place in the window and waits until `isRight` holds for the window's place. The window
    /// follows the pointer from where the pointer is when the window manager takes over, which may be late:
    /// at any point of the first `by`. So the window is then dragged by `by` once more, and follows by that
    /// at least.
    void drag(const QPoint& from, const QPoint& by, const std::function<bool(const QRect&)>& isRight) const {
        const QByteArray before = serversGeometry();
        desktop.pull(from, from + by);
        bool back = false;
        EXPECT_TRUE(comesTrue([&] {
            back = !back; // the window manager moves the window only while the pointer moves
            desktop.point(from + by * (back ? 0.8 : 1.0));
            return serversGeometry() != before;
        }));
        desktop.point(from + 2 * by);
        desktop.letGo();
        awaitPlace(isRight);
    }

    /// Drags from `from`, given from the window's top left, and waits until the window has followed.
    void expectMoveFrom(const QPoint& from) const {
        constexpr QPoint by{-45, 35};
        drag(first.topLeft() + from, by, [&](const QRect& place) {
            return reaches(place.topLeft() - first.topLeft(), by) && place.size() == firstSize;
        });
    }

    QRect first;
};

TEST_F(FrameTest, MovesByItsBackground) {
    expectMoveFrom({470, 80});
}

TEST_F(FrameTest, MovesByItsCard) {
    expectMoveFrom({470, 600});
}

TEST_F(FrameTest, MovesByItsTitleBar) {
    expectMoveFrom({470, 14});
}

TEST_F(FrameTest, GrowsByItsCorner) {
    constexpr QPoint by{60, 40};
    drag(first.bottomRight() - QPoint(2, 2), by, [&](const QRect& place) {
        return reaches(place.bottomRight() - first.bottomRight(), by) && place.topLeft() == first.topLeft();
    });
}

TEST_F(FrameTest, GrowsByItsLeftEdgeToTheLeft) {
    constexpr QPoint by{-50, 0};
    drag(first.topLeft() + QPoint(2, 300), by, [&](const QRect& place) {
        return reaches(place.topLeft() - first.topLeft(), by) && place.topRight() == first.topRight();
    });
}

TEST_F(FrameTest, NeverShrinksBelowItsMinimumSize) {
    drag(first.bottomRight() - QPoint(2, 2), {-300, -300},
         [](const QRect& place) { return place.size() == minimumSize; });
}

TEST_F(FrameTest, MaximisesAndRestoresByItsButton) {
    click("Maximise");
    awaitSize(screenSize);
    click("Restore");
    awaitPlace([this](const QRect& place) { return place == first; });
}

TEST_F(FrameTest, MaximisesAndRestoresByADoubleClickOnTheTitleBar) {
    desktop.click(first.topLeft() + QPoint(470, 14), 2);
    awaitSize(screenSize);
    desktop.click(QPoint(640, 14), 2);
    awaitPlace([this](const QRect& place) { return place == first; });
}

TEST_F(FrameTest, MinimisesByItsButton) {
    click("Minimise");
    EXPECT_TRUE(comesTrue([this] { return desktop.activeTitle().isEmpty(); }));
}

class SmallScreenTest : public WindowTest {
protected:
    SmallScreenTest()
        : WindowTest(Bus::present, Display::smallX11) {}
};

TEST_F(SmallScreenTest, HasRoomForAllButtons) {
    open();
    EXPECT_TRUE(comesTrue([this] { return window().size() == QSize(940, 700); }));
    EXPECT_TRUE(QRect(0, 0, 1024, 700).contains(awaitShown("CHOOSE…").place));
    EXPECT_TRUE(QRect(0, 0, 1024, 700).contains(awaitShown("Close").place));
}

} // namespace
} // namespace velmora::test
