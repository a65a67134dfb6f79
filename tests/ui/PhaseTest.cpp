// What moves when and while a phase of the scan changes, and that it comes to rest.

#include "tests/ui/UiTest.h"
#include "ui/kit/PaintedGlowText.h"

#include <gtest/gtest.h>

#include <set>

namespace velmora::test {
namespace {

using Phase = ScanModel::Phase;

class PhaseTest : public UiTest {
protected:
    bool isShown(const char* name) { return find(name)->isVisible(); }

    QString total() { return qobject_cast<PaintedGlowText*>(find("totalClock"))->text(); }

    /// The content in motion, at this moment of its time.
    void showAt(double seconds) {
        content->setProperty("animated", true);
        content->setProperty("time", seconds);
    }

    QQuickItem* content = nullptr;
};

TEST_F(PhaseTest, FadesFromPanelToPanel) {
    scan.show(done);
    openWindow(true);
    EXPECT_TRUE(isShown("resultPanel"));
    scan.show({});
    EXPECT_TRUE(isShown("resultPanel")) << "it fades away";
    EXPECT_EQ(total(), "01:02:05") << "with what it said";
    EXPECT_TRUE(comesTrue([this] { return !isShown("resultPanel"); }));
    EXPECT_TRUE(comesTrue([this] { return find("dropPrompt")->parentItem()->opacity() == 1; }));
    auto* const fading = find("dropPrompt")->parentItem()->findChild<QObject*>("fading");
    ASSERT_NE(fading, nullptr);
    EXPECT_EQ(fading->property("animation").value<QObject*>()->property("duration"), 150);
}

TEST_F(PhaseTest, ChangesThePanelAtOnceWhereLessMotionIsWanted) {
    scan.show(done);
    openWindow(false);
    scan.show({.phase = Phase::empty, .status = "NO AUDIO FOUND"});
    EXPECT_FALSE(isShown("resultPanel"));
    EXPECT_TRUE(isShown("emptyPanel"));
}

TEST_F(PhaseTest, SendsALightAlongTheTrackUntilSomethingIsCounted) {
    scan.show({.phase = Phase::scanning, .status = "READING SOURCE"});
    content = showContent();
    EXPECT_FALSE(isShown("readingTrack")) << "less motion is wanted";
    const QPoint middle = place(find("progressBar")).center();
    const QColor dark = grab().pixelColor(middle);
    showAt(1600.8);
    ASSERT_TRUE(isShown("readingTrack"));
    EXPECT_GT(grab().pixelColor(middle).lightness(), dark.lightness() + 60) << "half of the way";
    const double before = find("readingLight")->x();
    showAt(1601.2);
    EXPECT_GT(find("readingLight")->x(), before + 100);
    EXPECT_LE(distance(grab().pixelColor(middle), dark), 2) << "it has passed";
    scan.show({.phase = Phase::scanning, .status = "MEASURING", .found = 8});
    EXPECT_FALSE(isShown("readingTrack"));
}

TEST_F(PhaseTest, NamesTheArchiveThatIsBeingUnpacked) {
    const ScanState reading = {
        .phase = Phase::scanning, .status = "READING SOURCE", .unpacking = "Live Set.zip"};
    scan.show(reading);
    showContent();
    const QQuickItem* tip = find("unpackingToolTip");
    hover(find("progressBar"));
    EXPECT_TRUE(comesTrue([tip] { return tip->isVisible(); }));
    EXPECT_EQ(tip->property("text"), "Unpacking Live Set.zip");
    scan.show({.phase = Phase::scanning, .status = "MEASURING", .found = 3});
    EXPECT_FALSE(tip->isVisible());
}

TEST_F(PhaseTest, PulsesWhileTheArchiveIsCompleted) {
    ScanState state = done;
    state.zip = ZipWorking{1, 2};
    scan.show(state);
    content = showContent();
    const auto opacities = [this] {
        std::set<int> percents;
        for (const double moment : {1200.0, 1200.3, 1200.6}) {
            showAt(moment);
            percents.insert(qRound(100 * find("zipLine")->opacity()));
        }
        return percents;
    };
    EXPECT_EQ(opacities(), std::set({100})) << "the number moves";
    state.zip = ZipWorking{2, 2};
    scan.show(state);
    EXPECT_EQ(opacities(), std::set({40, 70, 100}));
    content->setProperty("animated", false);
    EXPECT_EQ(find("zipLine")->opacity(), 1) << "less motion is wanted";
    state.zip = ZipDone{"/music/a.zip"};
    scan.show(state);
    EXPECT_EQ(opacities(), std::set({100}));
}

} // namespace
} // namespace velmora::test
