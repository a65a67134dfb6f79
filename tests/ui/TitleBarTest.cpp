// The window's own frame: its title bar and its edge.

#include "tests/ui/UiTest.h"
#include "ui/kit/Neon.h"

#include <QTest>

#include <gtest/gtest.h>

#include <string>

namespace velmora::test {
namespace {

class TitleBarTest : public UiTest {
protected:
    void maximise() {
        window->showMaximized();
        ASSERT_TRUE(comesTrue([this] { return find("titleBar")->property("filling").toBool(); }));
        grab(); // the buttons take their places
    }
};

TEST_F(TitleBarTest, ClosesAtTheVertexOfTheScreenWhenMaximised) {
    openWindow();
    EXPECT_EQ(place(find("closeButton")).right() + 1, window->width() - 4);
    maximise();
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, {window->width() - 1, 0});
    EXPECT_TRUE(comesTrue([this] { return !window->isVisible(); }));
}

TEST_F(TitleBarTest, OpensItsMenuAtTheOtherVertex) {
    openWindow();
    maximise();
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, {0, 1}); // a null point would be the middle
    EXPECT_TRUE(find("menu")->isVisible());
}

TEST_F(TitleBarTest, HasALineAlongTheEdgeUnlessItIsMaximised) {
    openWindow();
    const auto nearIndigo = [](const QColor& color) {
        return distance(color, over(Qt::black, Neon::indigo, 0.55)) < 24;
    };
    const auto edgePixels = [this] {
        const int right = window->width() - 1;
        const int bottom = window->height() - 1;
        return std::vector<QPoint>{{0, 0}, {right, bottom}, {470, 0}, {470, bottom}, {0, 500}, {right, 500}};
    };
    for (const QPoint& point : edgePixels()) {
        EXPECT_TRUE(nearIndigo(grab().pixelColor(point))) << point.x() << " " << point.y();
    }
    EXPECT_FALSE(nearIndigo(grab().pixelColor(1, 500))) << "it is one point wide";
    maximise();
    for (const QPoint& point : edgePixels()) {
        EXPECT_FALSE(nearIndigo(grab().pixelColor(point))) << point.x() << " " << point.y();
    }
}

TEST_F(TitleBarTest, SaysThatItAsksForNewerVersions) {
    openWindow();
    const QQuickItem* line = find("checkingLine");
    EXPECT_FALSE(line->isVisible());
    window->setProperty("checking", true);
    EXPECT_TRUE(line->isVisible());
    EXPECT_GT(place(line).left(), place(find("menuButton")).right());
    EXPECT_LT(place(line).bottom(), 28);
    window->setProperty("checking", false);
    EXPECT_FALSE(line->isVisible());
}

TEST_F(TitleBarTest, StandsOnTheSameBackdropAsTheContent) {
    openWindow();
    EXPECT_EQ(place(find("backdrop")), QRect({}, window->size()));
    const QImage image = grab();
    for (const int x : {200, 470, 700}) { // between two lines of the grid, and between buttons
        EXPECT_LE(distance(image.pixelColor(x, 27), image.pixelColor(x, 28)), 3) << x;
    }
}

} // namespace
} // namespace velmora::test
