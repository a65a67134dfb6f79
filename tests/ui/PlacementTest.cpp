// The places of the items in the window's content, and that they stay there.

#include "tests/ui/UiTest.h"

#include <QEasingCurve>

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>

namespace velmora::test {
namespace {

using Phase = ScanModel::Phase;

constexpr std::array panels = {"dropPrompt", "scanningPanel", "resultPanel", "emptyPanel"}; // by phase

class PlacementTest : public UiTest {};

TEST_F(PlacementTest, KeepsALongSourceOnOneLineInTheCard) {
    showState({.phase = Phase::scanning, .source = std::string(400, 'W')}, {880, 660});
    EXPECT_LE(place(find("scanningDetail")).width(), 420) << "no wider than the bar";
    EXPECT_TRUE(find("scanningDetail")->property("keepsEnd").toBool());
}

TEST_F(PlacementTest, CentresThePanelInTheCard) {
    for (const Phase phase : {Phase::idle, Phase::scanning, Phase::done, Phase::empty}) {
        showState({.phase = phase, .status = "READING SOURCE", .source = "SOURCE"});
        const QRect card = place(find("card"));
        const QRect panel = place(find(panels[static_cast<std::size_t>(phase)]));
        EXPECT_LE(std::abs(panel.center().y() - card.center().y()), 1);
        EXPECT_LE(std::abs(panel.center().x() - card.center().x()), 1);
    }
}

TEST_F(PlacementTest, LaysItselfOutAtEverySize) {
    for (const QSize& points : {QSize(880, 660), QSize(940, 700), QSize(1440, 900), QSize(2560, 1440)}) {
        showState(done, points);
        EXPECT_EQ(place(find("brandLogo")), QRect(26, 26, 54, 54));
        EXPECT_EQ(place(find("phasePill")).right() + 1, points.width() - 26);
        EXPECT_EQ(place(find("waveField")), QRect(0, 40, points.width(), points.height() - 40));
        EXPECT_EQ(find("waveField")->opacity(), 0.88);
        EXPECT_EQ(place(find("spectrumStrip")).height(), 34);
        EXPECT_EQ(place(find("zipButton")).bottom() + 1, points.height() - 26);
        EXPECT_EQ(place(find("copyFileListButton")).left(), place(find("copyRuntimeButton")).right() + 11);
        const QRect card = place(find("card"));
        EXPECT_GT(card.top(), 26 + 54);
        EXPECT_LT(card.bottom(), place(find("spectrumStrip")).top());
        EXPECT_LT(place(find("spectrumStrip")).bottom(), place(find("zipButton")).top());
    }
}

TEST_F(PlacementTest, CentresTheBarsBelowTheCard) {
    for (const int width : {880, 940, 1437, 2560}) {
        showState(done, {width, 700});
        const QImage image = grab();
        const int floor = place(find("spectrumStrip")).bottom() - 1;
        const auto isLit = [&](int x) { return image.pixelColor(x, floor).lightness() > 40; };
        int first = 0;
        int last = width - 1;
        while (first < last && !isLit(first)) {
            ++first;
        }
        while (last > first && !isLit(last)) {
            --last;
        }
        EXPECT_LE(std::abs(first - (width - 1 - last)), 1) << width;
        EXPECT_LE(first, 26 + 5) << "no further bar has room";
    }
}

TEST_F(PlacementTest, BrightensTheCardWhileADragHovers) {
    showContent();
    const QRect card = place(find("card"));
    const QPoint edge(card.left(), card.top() + 40);
    const int resting = grab().pixelColor(edge).blue();
    scan.setTargeted(true);
    EXPECT_GT(grab().pixelColor(edge).blue(), 200);
    EXPECT_GT(grab().pixelColor(edge + QPoint(1, 0)).blue(), 200) << "the line is two points wide";
    scan.setTargeted(false);
    EXPECT_EQ(grab().pixelColor(edge).blue(), resting);
    EXPECT_LT(resting, 130);
}

TEST_F(PlacementTest, BlendsTheCardAtRestAndLitWithoutPaintingItAgain) {
    showContent();
    QQuickItem* const card = find("card");
    const QPoint edge = place(card).topLeft() + QPoint(0, 40);
    const auto blueAt = [&](double highlight) {
        card->setProperty("highlight", highlight);
        return grab().pixelColor(edge).blue();
    };
    const int resting = blueAt(0);
    const int lit = blueAt(1);
    EXPECT_NEAR(blueAt(0.5), (resting + lit) / 2.0, 25);
    EXPECT_EQ(find("litCard")->opacity(), 0.5);
    EXPECT_TRUE(find("litCard")->property("lit").toBool());
    EXPECT_EQ(blueAt(0), resting);
    EXPECT_FALSE(find("litCard")->isVisible());
}

TEST_F(PlacementTest, EasesTheCardOut) {
    showContent()->setProperty("animated", true);
    scan.setTargeted(true); // the animation is made when it is needed
    const auto* animation =
        find("card")->findChild<QObject*>("brightening")->property("animation").value<QObject*>();
    ASSERT_NE(animation, nullptr);
    EXPECT_EQ(animation->property("duration"), 180);
    const auto curve = animation->property("easing").value<QEasingCurve>();
    for (const double s : {0.2, 0.5, 0.8}) { // the curve through (0, 0), (0.58, 1), (1, 1) at parameter s
        const double time = 3 * (1 - s) * s * s * 0.58 + s * s * s;
        const double value = 3 * (1 - s) * s * s + s * s * s;
        EXPECT_NEAR(curve.valueForProgress(time), value, 1e-3);
    }
}

TEST_F(PlacementTest, LeavesTheRoomsAsDesigned) {
    showContent();
    EXPECT_EQ(place(find("dropEmblem")).size(), QSize(96, 96));
    EXPECT_EQ(place(find("dropCaption")).top(), place(find("dropEmblem")).bottom() + 1 + 18);
    ScanState state = done;
    state.zip = ZipWorking{1, 2};
    scan.show(state);
    grab(); // the row takes its places
    EXPECT_EQ(place(find("zipLine")).left(), place(find("resetButton")).right() + 1 + 10 + 10);
    const QQuickItem* clock = find("totalClock");
    EXPECT_EQ(clock->parentItem()->size(), clock->size() - QSizeF(8, 8))
        << "four points closer on every side";
    EXPECT_EQ(find("countLine")->parentItem()->size(), find("countLine")->size() + QSizeF(12, 12));
}

TEST_F(PlacementTest, KeepsTheButtonsInTheirPlacesWhileOneSaysCopied) {
    showState(done);
    const QRect before = place(find("copyFileListButton"));
    scan.flash(ScanView::Copied::total);
    grab();
    EXPECT_EQ(place(find("copyFileListButton")), before);
}

TEST_F(PlacementTest, KeepsAClockOfAnyLengthInTheCard) {
    for (const double seconds : {3e9, 1e12, 1e15, 1e300}) {
        ScanState state = done;
        state.seconds = seconds;
        showState(state, {880, 660});
        EXPECT_LE(find("totalClock")->width(), 880 - 2 * 26 - 2 * 30) << seconds;
    }
    showState(done);
    EXPECT_EQ(find("totalClock")->property("size"), 76);
}

TEST_F(PlacementTest, KeepsALongZipLineInTheWindow) {
    ScanState state = done;
    state.zip = ZipFailed{std::string(300, 'x')};
    showState(state, {880, 660});
    EXPECT_LE(place(find("zipLine")).right(), 880 - 26);
}

} // namespace
} // namespace velmora::test
