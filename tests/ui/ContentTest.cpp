#include "tests/ui/UiTest.h"
#include "ui/content/ProgressCapsule.h"
#include "ui/kit/Neon.h"
#include "ui/kit/PaintedGlowText.h"
#include "ui/kit/PaintedText.h"

#include <QTest>

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using Phase = ScanModel::Phase;

class ContentTest : public UiTest {
protected:
    PaintedText* caption(const char* name) { return qobject_cast<PaintedText*>(find(name)); }

    PaintedGlowText* glow(const char* name) { return qobject_cast<PaintedGlowText*>(find(name)); }

    /// Size, weight and tracking of a caption, as one text.
    static std::string setting(const PaintedText* text) {
        return std::to_string(text->size()) + " " + std::to_string(text->weight()) + " " +
               QString::number(text->tracking()).toStdString() + (text->monospaced() ? " mono" : "");
    }

    QStringList visibleNames(const QStringList& names) {
        QStringList visible;
        for (const QString& name : names) {
            if (find(name.toUtf8().constData())->isVisible()) {
                visible << name;
            }
        }
        return visible;
    }

    const QStringList panels = {"dropPrompt", "scanningPanel", "resultPanel", "emptyPanel"};
    const QStringList buttons = {"copyRuntimeButton", "copyFileListButton", "zipButton", "chooseButton",
                                 "resetButton"};
};

TEST_F(ContentTest, ShowsThePanelAndTheButtonsOfThePhase) {
    showContent();
    EXPECT_EQ(visibleNames(panels), QStringList("dropPrompt"));
    EXPECT_EQ(visibleNames(buttons), QStringList("chooseButton")) << "there is nothing to reset";
    scan.show({.phase = Phase::scanning});
    EXPECT_EQ(visibleNames(panels), QStringList("scanningPanel"));
    EXPECT_EQ(visibleNames(buttons), QStringList({"chooseButton", "resetButton"}));
    scan.show(done);
    EXPECT_EQ(visibleNames(panels), QStringList("resultPanel"));
    EXPECT_EQ(visibleNames(buttons),
              QStringList({"copyRuntimeButton", "copyFileListButton", "zipButton", "resetButton"}));
    scan.show({.phase = Phase::empty});
    EXPECT_EQ(visibleNames(panels), QStringList("emptyPanel"));
    EXPECT_EQ(visibleNames(buttons), QStringList({"chooseButton", "resetButton"}));
}

TEST_F(ContentTest, SetsItsTextsAsDesigned) {
    showState({.status = "MEASURING", .processed = 3, .found = 9, .source = "LIVE SET", .unreadable = 1});
    EXPECT_EQ(setting(caption("wordmark")), "17 900 4 mono");
    EXPECT_EQ(setting(caption("brandLine")), "9 600 3.4");
    EXPECT_EQ(setting(caption("dropCaption")), "17 700 3");
    EXPECT_EQ(setting(caption("scanningStatus")), "13 700 3");
    EXPECT_EQ(setting(caption("scanningDetail")), "11 400 1.2 mono");
    EXPECT_EQ(setting(caption("totalLabel")), "11 700 4.5");
    EXPECT_EQ(setting(caption("totalWords")), "13 500 2");
    EXPECT_EQ(setting(caption("countLine")), "10 700 2.2");
    EXPECT_EQ(setting(caption("unreadableLine")), "10 400 0 mono");
    EXPECT_EQ(setting(caption("emptyTitle")), "15 700 2.5");
    EXPECT_EQ(setting(caption("emptyStatus")), "11 400 0");
    EXPECT_EQ(setting(caption("zipLine")), "10 700 1.5 mono");
    EXPECT_EQ(glow("scanningCount")->size(), 44);
    EXPECT_EQ(glow("totalClock")->size(), 76);
    EXPECT_EQ(glow("totalClock")->tint(), Neon::violet);
}

TEST_F(ContentTest, ColoursItsTextsAsDesigned) {
    showState(done);
    EXPECT_EQ(caption("wordmark")->color(), Neon::ink);
    EXPECT_EQ(caption("brandLine")->color(), Neon::inkDim);
    EXPECT_EQ(caption("dropCaption")->color(), Neon::ink);
    EXPECT_EQ(caption("scanningStatus")->color(), Neon::violet);
    EXPECT_EQ(caption("scanningDetail")->color(), Neon::inkDim);
    EXPECT_EQ(caption("totalLabel")->color(), Neon::inkDim);
    EXPECT_EQ(caption("totalWords")->color(), Neon::indigo);
    EXPECT_EQ(caption("countLine")->color(), Neon::ink);
    EXPECT_EQ(caption("unreadableLine")->color(), Neon::alert);
    EXPECT_EQ(caption("unreadableLine")->opacity(), 0.85);
    EXPECT_EQ(caption("emptyTitle")->color(), Neon::ink);
    EXPECT_EQ(caption("emptyStatus")->color(), Neon::inkDim);
    EXPECT_EQ(find("slashEmblem")->opacity(), 0.9);
}

TEST_F(ContentTest, SaysWhatTheScanFound) {
    showState(done);
    EXPECT_EQ(caption("totalLabel")->text(), "TOTAL RUNTIME");
    EXPECT_EQ(glow("totalClock")->text(), "01:02:05");
    EXPECT_EQ(caption("totalWords")->text(), "1 hr  2 min  5 sec");
    EXPECT_EQ(caption("countLine")->text(), u8"12 FILES \u00b7 1.5 MB");
    EXPECT_FALSE(caption("unreadableLine")->isVisible());
    ScanState state = done;
    state.unreadable = 1;
    scan.show(state);
    EXPECT_TRUE(caption("unreadableLine")->isVisible());
    EXPECT_EQ(caption("unreadableLine")->text(), "1 file could not be read");
}

TEST_F(ContentTest, FollowsARunningScan) {
    showState({.phase = Phase::scanning});
    EXPECT_EQ(caption("scanningStatus")->text(), u8"\u00b7 \u00b7 \u00b7");
    scan.show({.phase = Phase::scanning,
               .status = "MEASURING",
               .processed = 4,
               .found = 8,
               .progress = 0.5,
               .source = "LIVE SET"});
    EXPECT_EQ(caption("scanningStatus")->text(), "MEASURING");
    EXPECT_EQ(glow("scanningCount")->text(), "4 / 8");
    EXPECT_EQ(caption("scanningDetail")->text(), "LIVE SET");
    EXPECT_EQ(qobject_cast<ProgressCapsule*>(find("progressBar"))->filledWidth(), 210);
}

TEST_F(ContentTest, FillsSixPointsOfTheBarAtTheStartAndAllOfItAtTheEnd) {
    showState({.phase = Phase::scanning, .found = 8});
    const QRect bar = place(find("progressBar"));
    EXPECT_EQ(bar.size(), QSize(420, 5));
    const auto filled = [&](int x) {
        return grab().pixelColor(bar.left() + x, bar.top() + 2).lightness() > 100;
    };
    EXPECT_TRUE(filled(1) && filled(5));
    EXPECT_FALSE(filled(6));
    scan.show({.phase = Phase::scanning, .processed = 8, .found = 8, .progress = 1});
    EXPECT_TRUE(filled(1) && filled(210) && filled(418));
    EXPECT_LE(distance(grab().pixelColor(bar.left() + 2, bar.top() + 2), Neon::violet), 6);
    EXPECT_LE(distance(grab().pixelColor(bar.left() + 417, bar.top() + 2), Neon::indigo), 6);
}

TEST_F(ContentTest, DisablesPackingWhileItRuns) {
    showState(done);
    const auto zipEnabled = [&](const ZipState& zip) {
        ScanState state = done;
        state.zip = zip;
        scan.show(state);
        return find("zipButton")->isEnabled();
    };
    EXPECT_TRUE(zipEnabled(ZipIdle()));
    EXPECT_FALSE(zipEnabled(ZipWorking{1, 2}));
    EXPECT_EQ(caption("zipLine")->text(), "ZIPPING 1/2");
    click(find("zipButton"));
    EXPECT_EQ(actions.asked, QStringList());
    EXPECT_TRUE(zipEnabled(ZipDone{"/a.zip"}));
    EXPECT_TRUE(zipEnabled(ZipFailed{"no"}));
    click(find("zipButton"));
    EXPECT_EQ(actions.asked, QStringList("zip"));
}

TEST_F(ContentTest, ShowsTheSavedArchiveWhenItsLineIsPressed) {
    ScanState state = done;
    state.zip = ZipDone{"/music/Live Set audio.zip"};
    showState(state);
    click(find("zipLine"));
    EXPECT_EQ(actions.asked, QStringList("revealZip"));
    state.zip = ZipFailed{"no"};
    scan.show(state);
    click(find("zipLine"));
    EXPECT_EQ(actions.asked, QStringList("revealZip")) << "a failure is no button";
}

TEST_F(ContentTest, AsksForWhatIsPressed) {
    showState(done);
    for (const char* name : {"copyRuntimeButton", "copyFileListButton", "zipButton", "resetButton"}) {
        click(find(name));
    }
    scan.show({});
    click(find("chooseButton"));
    EXPECT_EQ(actions.asked, QStringList({"copyRuntime", "copyFileList", "zip", "reset", "choose"}));
}

TEST_F(ContentTest, SaysCopiedOnTheButton) {
    showState(done);
    scan.flash(ScanView::Copied::total);
    EXPECT_EQ(find("copyRuntimeButton")->property("title"), "COPIED");
    EXPECT_EQ(find("copyFileListButton")->property("title"), "COPY FILE LIST");
}

TEST_F(ContentTest, ReachesEveryControlWithTab) {
    ScanState state = done;
    state.zip = ZipDone{"/a.zip"};
    showState(state);
    QStringList reached;
    for (int i = 0; i < 6; ++i) {
        const QImage before = grab();
        QTest::keyClick(window.get(), Qt::Key_Tab);
        reached << window->activeFocusItem()->objectName();
        EXPECT_NE(grab(), before) << "the focus is visible";
    }
    EXPECT_EQ(reached, QStringList({"countLink", "copyRuntimeButton", "copyFileListButton", "zipButton",
                                    "resetButton", "zipStatus"}));
}

} // namespace
} // namespace velmora::test
