// The window's own frame, with a window manager that draws none: title bar, edges, background.

#include "tests/window/WindowTest.h"

#include <QSize>

namespace velmora::test {
namespace {

constexpr QSize minimumSize{880, 660 + 28};
constexpr QSize firstSize{940, 700 + 28};
constexpr QSize screenSize{1280, 1024};

/// Whether the window followed the pointer, from the moment on at which the window manager took over: that
/// one may take its time, but not half of the way.
bool follows(const QPoint& pointer, const QPoint& moved) {
    return (pointer - moved).manhattanLength() * 2 < pointer.manhattanLength();
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

    /// Drags from a place in the window.
    void drag(const QPoint& from, const QPoint& by) const {
        desktop.pull(from, from + by);
        desktop.letGo();
    }

    /// Drags from `from`, and waits until the window has followed.
    void expectMoveFrom(const QPoint& from) const {
        constexpr QPoint by{-90, 70};
        drag(first.topLeft() + from, by);
        awaitPlace([&](const QRect& place) { return follows(by, place.topLeft() - first.topLeft()); });
        EXPECT_EQ(window().size(), firstSize);
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
    drag(first.bottomRight() - QPoint(2, 2), by);
    awaitPlace([&](const QRect& place) { return follows(by, place.bottomRight() - first.bottomRight()); });
    EXPECT_EQ(window().topLeft(), first.topLeft());
}

TEST_F(FrameTest, GrowsByItsLeftEdgeToTheLeft) {
    constexpr QPoint by{-50, 0};
    drag(first.topLeft() + QPoint(2, 300), by);
    awaitPlace([&](const QRect& place) { return follows(by, place.topLeft() - first.topLeft()); });
    EXPECT_EQ(window().topRight(), first.topRight());
}

TEST_F(FrameTest, NeverShrinksBelowItsMinimumSize) {
    drag(first.bottomRight() - QPoint(2, 2), {-300, -300});
    awaitSize(minimumSize);
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

} // namespace
} // namespace velmora::test
