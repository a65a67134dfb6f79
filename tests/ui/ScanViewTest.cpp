#include "ui/content/ScanView.h"

#include "tests/ui/UiTest.h"
#include "ui/kit/Neon.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

using Phase = ScanModel::Phase;

class ScanViewTest : public UiTest {
protected:
    ScanView view;
};

struct PhaseCase {
    Phase phase;
    const char* pill;
    QColor tint;
    double intensity;
};

TEST_F(ScanViewTest, NamesEachPhaseInItsColourAndStrength) {
    for (const PhaseCase& row : {PhaseCase{Phase::idle, "STANDBY", Neon::inkDim, 0.44},
                                 PhaseCase{Phase::scanning, "SCANNING", Neon::indigo, 1.0},
                                 PhaseCase{Phase::done, "READY", Neon::violet, 0.74},
                                 PhaseCase{Phase::empty, "EMPTY", Neon::alert, 0.3}}) {
        view.show({.phase = row.phase});
        EXPECT_EQ(view.pillText(), row.pill);
        EXPECT_EQ(view.pillTint(), row.tint);
        EXPECT_EQ(view.intensity(), row.intensity);
        EXPECT_EQ(view.idle() + view.scanning() + view.done() + view.empty(), 1);
    }
}

TEST_F(ScanViewTest, ShowsThreeDotsWhileThereIsNoStatus) {
    view.show({.phase = Phase::scanning});
    EXPECT_EQ(view.scanningStatus(), u8"\u00b7 \u00b7 \u00b7");
    view.show({.phase = Phase::scanning, .status = "MEASURING"});
    EXPECT_EQ(view.scanningStatus(), "MEASURING");
}

TEST_F(ScanViewTest, CountsFilesInCapitals) {
    view.show({.fileCount = 1, .bytes = 1'500'000});
    EXPECT_EQ(view.countLine(), u8"1 FILE \u00b7 1.5 MB");
    view.show({.fileCount = 2, .bytes = 999});
    EXPECT_EQ(view.countLine(), u8"2 FILES \u00b7 999 BYTES");
    view.show({.fileCount = 0, .bytes = 0});
    EXPECT_EQ(view.countLine(), u8"0 FILES \u00b7 ZERO KB");
}

TEST_F(ScanViewTest, CountsUnreadableFilesInSmallLetters) {
    EXPECT_EQ(view.unreadableLine(), "");
    view.show({.unreadable = 1});
    EXPECT_EQ(view.unreadableLine(), "1 file could not be read");
    view.show({.unreadable = 2});
    EXPECT_EQ(view.unreadableLine(), "2 files could not be read");
}

TEST_F(ScanViewTest, ShowsTheTotalAsClockAndInWords) {
    view.show({.seconds = 5832.4});
    EXPECT_EQ(view.totalClock(), "01:37:12");
    EXPECT_EQ(view.totalWords(), "1 hr  37 min  12 sec");
}

TEST_F(ScanViewTest, SurvivesATotalThatNoClockCanShow) {
    view.show({.seconds = 1e30});
    EXPECT_FALSE(view.totalClock().isEmpty());
    view.show({.seconds = std::numeric_limits<double>::infinity()});
    EXPECT_FALSE(view.totalWords().isEmpty());
}

TEST_F(ScanViewTest, ShowsWhatIsNotUtf8AsReplacementCharacters) {
    view.show({.source = "M\xfcSIK\x1b", .zip = ZipDone{"/tmp/\xff.zip"}});
    EXPECT_EQ(view.source(), u8"M\ufffdSIK\ufffd");
    EXPECT_EQ(view.zipText(), u8"ZIP SAVED \u00b7 \ufffd.zip");
}

TEST_F(ScanViewTest, TellsHowThePackingStands) {
    EXPECT_EQ(view.zipText(), "");
    view.show({.zip = ZipWorking{3, 12}});
    EXPECT_EQ(view.zipText(), "ZIPPING 3/12");
    EXPECT_EQ(view.zipTint(), Neon::indigo);
    EXPECT_EQ(view.zipTracking(), 1.5);
    EXPECT_TRUE(view.zipWorking());
    view.show({.zip = ZipDone{"/music/Live Set.zip"}});
    EXPECT_EQ(view.zipText(), u8"ZIP SAVED \u00b7 Live Set.zip");
    EXPECT_EQ(view.zipTint(), Neon::violet);
    EXPECT_EQ(view.zipTracking(), 1.5);
    EXPECT_TRUE(view.zipSaved());
    view.show({.zip = ZipFailed{"No space left on device"}});
    EXPECT_EQ(view.zipText(), u8"ZIP FAILED \u00b7 No space left on device");
    EXPECT_EQ(view.zipTint(), Neon::alert);
    EXPECT_EQ(view.zipTracking(), 1);
    EXPECT_FALSE(view.zipWorking() || view.zipSaved());
}

TEST_F(ScanViewTest, AnnouncesOnlyWhatDiffers) {
    const QSignalSpy phase(&view, &ScanView::phaseChanged);
    const QSignalSpy counts(&view, &ScanView::countChanged);
    const QSignalSpy summary(&view, &ScanView::summaryChanged);
    view.show({.processed = 4, .found = 8, .progress = 0.5});
    EXPECT_EQ(view.countText(), "4 / 8");
    EXPECT_EQ(counts.count(), 1);
    EXPECT_EQ(phase.count(), 0);
    EXPECT_EQ(summary.count(), 0);
}

TEST_F(ScanViewTest, FollowsAModel) {
    ScanModel model({.gather = [](const auto&, const auto&, const auto&) { return GatherResult(); },
                     .measure = [](const auto& path, const auto&) { return Measured{.url = path}; }});
    const ScanView follower(model);
    EXPECT_TRUE(follower.idle());
    model.ingest({"/music/Live Set"});
    EXPECT_TRUE(follower.scanning());
    EXPECT_EQ(follower.source(), "LIVE SET");
    EXPECT_EQ(follower.status(), "READING SOURCE");
    ASSERT_TRUE(comesTrue([&] { return follower.empty(); }));
    EXPECT_EQ(follower.status(), "NO AUDIO FOUND");
    model.reset();
    EXPECT_TRUE(follower.idle());
}

TEST_F(ScanViewTest, ShowsACountThatStreamsInOnceAFrame) {
    constexpr int files = 4000;
    ScanModel model(
        {.gather =
             [](const auto&, const auto&, const auto&) {
                 return GatherResult{FilePaths(files), {}, {}, {}};
             },
         .measure = [](const auto& path, const auto&) { return Measured{.url = path, .seconds = 1}; }});
    const ScanView follower(model);
    std::vector<QString> shown;
    int published = 0;
    QObject::connect(&model, &ScanModel::processedChanged, [&] { ++published; });
    QObject::connect(&follower, &ScanView::countChanged, [&] { shown.push_back(follower.countText()); });
    QElapsedTimer clock;
    clock.start();
    model.ingest({"/music"});
    ASSERT_TRUE(comesTrue([&] { return follower.done(); }));
    const auto frames = static_cast<std::size_t>(clock.elapsed() / 16);
    EXPECT_GE(published, files / 4);
    EXPECT_LE(shown.size(), 2 * frames + 2) << "the number found, and the last; timers may be a little early";
    ASSERT_GE(shown.size(), 2U);
    EXPECT_EQ(shown.front(), "0 / 4000") << "MEASURING is shown before the first file is done";
    EXPECT_EQ(shown.back(), "4000 / 4000");
}

TEST_F(ScanViewTest, SaysCopiedOnTheButtonThatCopiedLast) {
    view.flash(ScanView::Copied::total);
    EXPECT_EQ(view.copyRuntimeTitle(), "COPIED");
    EXPECT_EQ(view.copyFileListTitle(), "COPY FILE LIST");
    view.flash(ScanView::Copied::list);
    EXPECT_EQ(view.copyRuntimeTitle(), "COPY RUNTIME");
    EXPECT_EQ(view.copyFileListTitle(), "COPIED");
}

TEST_F(ScanViewTest, SaysCopiedForOnePointFourSeconds) {
    QElapsedTimer clock;
    clock.start();
    view.flash(ScanView::Copied::total);
    ASSERT_TRUE(comesTrue([&] { return view.flashing() == ScanView::Copied::nothing; }));
    EXPECT_GE(clock.elapsed(), 1390);
    EXPECT_EQ(view.copyRuntimeTitle(), "COPY RUNTIME");
}

TEST_F(ScanViewTest, LeavesALaterCopysFlashAlone) {
    view.flash(ScanView::Copied::total);
    QTest::qWait(ScanView::flashMilliseconds / 2);
    QElapsedTimer sinceSecond;
    sinceSecond.start();
    view.flash(ScanView::Copied::list);
    ASSERT_TRUE(comesTrue([&] { return view.flashing() == ScanView::Copied::nothing; }));
    EXPECT_GE(sinceSecond.elapsed(), 1390) << "the end of the first flash is not that of the second";
}

} // namespace
} // namespace velmora::test
