#include "tests/ui/UiTest.h"
#include "ui/scenery/FrameClock.h"

#include <QTest>

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using Phase = ScanModel::Phase;

class MainWindowTest : public UiTest {
protected:
    bool clockRuns() { return window->findChild<FrameClock*>()->running(); }
};

TEST_F(MainWindowTest, IsFramelessAndLeavesTheContentItsMinimumSize) {
    openWindow();
    EXPECT_TRUE(window->flags().testFlag(Qt::FramelessWindowHint));
    EXPECT_EQ(window->minimumSize(), QSize(880, 660 + 28));
    EXPECT_EQ(window->size(), QSize(940, 700 + 28));
    EXPECT_EQ(place(find("card")).left(), 26);
    EXPECT_EQ(place(find("brandLogo")).topLeft(), QPoint(26, 28 + 26));
}

TEST_F(MainWindowTest, DoesWithKeysWhatTheButtonsDo) {
    openWindow();
    press(Qt::Key_O, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    press(Qt::Key_Escape);
    EXPECT_EQ(actions.asked, QStringList("choose")) << "there is nothing to copy or to reset";
    scan.show({.phase = Phase::done});
    press(Qt::Key_C, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    press(Qt::Key_S, Qt::ControlModifier);
    press(Qt::Key_Escape);
    press(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(actions.asked, QStringList({"choose", "copyRuntime", "copyFileList", "zip", "reset", "quit"}));
    scan.show({.phase = Phase::done, .zip = ZipWorking{1, 2}});
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(actions.asked.size(), 6) << "one packing at a time";
}

TEST_F(MainWindowTest, ResetsDuringAPackingByItsButtonOnly) {
    scan.show({.phase = Phase::done, .zip = ZipWorking{1, 2}});
    openWindow();
    press(Qt::Key_Escape);
    EXPECT_EQ(actions.asked, QStringList());
    click(find("resetButton"));
    EXPECT_EQ(actions.asked, QStringList("reset"));
    scan.show({.phase = Phase::done, .zip = ZipDone{"/music/Live Set.zip"}});
    press(Qt::Key_Escape);
    EXPECT_EQ(actions.asked, QStringList({"reset", "reset"}));
}

TEST_F(MainWindowTest, OpensItsMenuByPointerAndByKey) {
    openWindow();
    const QQuickItem* menu = find("menu");
    EXPECT_FALSE(menu->isVisible());
    click(find("menuButton"));
    EXPECT_TRUE(menu->isVisible());
    click(find("aboutRow"));
    EXPECT_FALSE(menu->isVisible());
    press(Qt::Key_F10);
    ASSERT_TRUE(menu->isVisible());
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    press(Qt::Key_F10);
    press(Qt::Key_Up);
    press(Qt::Key_Space);
    EXPECT_EQ(actions.asked, QStringList({"about", "checkForUpdates", "quit"}));
}

TEST_F(MainWindowTest, ClosesItsMenuByTheKeyThatOpenedIt) {
    openWindow();
    press(Qt::Key_Tab);
    press(Qt::Key_F10);
    ASSERT_TRUE(find("menu")->isVisible());
    press(Qt::Key_F10);
    EXPECT_FALSE(find("menu")->isVisible());
    EXPECT_EQ(window->activeFocusItem()->objectName(), "chooseButton");
    press(Qt::Key_F10);
    EXPECT_TRUE(find("menu")->isVisible());
}

TEST_F(MainWindowTest, ClosesItsMenuWithoutACommand) {
    openWindow();
    scan.show({.phase = Phase::done});
    press(Qt::Key_F10);
    press(Qt::Key_Escape);
    EXPECT_FALSE(find("menu")->isVisible());
    press(Qt::Key_F10);
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, {600, 400});
    EXPECT_FALSE(find("menu")->isVisible());
    EXPECT_EQ(actions.asked, QStringList());
}

TEST_F(MainWindowTest, MaximisesByDoubleClickOnTheTitleBar) {
    openWindow();
    QTest::mouseDClick(window.get(), Qt::LeftButton, {}, {400, 14});
    EXPECT_TRUE(comesTrue([&] { return window->visibility() == QWindow::Maximized; }));
    EXPECT_EQ(find("maximizeButton")->property("label"), "Restore");
    click(find("maximizeButton"));
    EXPECT_TRUE(comesTrue([&] { return window->visibility() == QWindow::Windowed; }));
}

TEST_F(MainWindowTest, ClosesByItsButton) {
    openWindow();
    click(find("closeButton"));
    EXPECT_TRUE(comesTrue([&] { return !window->isVisible(); }));
}

TEST_F(MainWindowTest, MovesOnlyWhileItIsVisible) {
    openWindow(true);
    EXPECT_TRUE(clockRuns());
    const double time = find("waveField")->property("time").toDouble();
    EXPECT_TRUE(comesTrue([&] { return find("waveField")->property("time").toDouble() > time; }));
    window->showMinimized();
    EXPECT_FALSE(clockRuns());
    window->showNormal();
    EXPECT_TRUE(clockRuns());
    window->hide();
    EXPECT_FALSE(clockRuns());
}

TEST_F(MainWindowTest, StandsStillWhereLessMotionIsWanted) {
    openWindow(false);
    EXPECT_FALSE(clockRuns());
}

TEST_F(MainWindowTest, MovesEachPhaseAtItsStrengthAtOnce) {
    openWindow(true);
    for (const auto& [phase, strength] :
         {std::pair(Phase::scanning, 1.0), {Phase::done, 0.74}, {Phase::empty, 0.3}, {Phase::idle, 0.44}}) {
        scan.show({.phase = phase});
        EXPECT_EQ(find("waveField")->property("intensity"), strength);
        EXPECT_EQ(find("spectrumStrip")->property("intensity"), strength);
    }
}

TEST_F(MainWindowTest, GrowsTheEmblemWhileADragHovers) {
    openWindow(true);
    QQuickItem* emblem = find("dropEmblem");
    EXPECT_EQ(emblem->property("magnification").toDouble(), 1);
    scan.setTargeted(true);
    EXPECT_TRUE(comesTrue([&] { return emblem->property("magnification").toDouble() == 1.08; }));
    scan.setTargeted(false);
    EXPECT_TRUE(comesTrue([&] { return emblem->property("magnification").toDouble() == 1; }));
}

TEST_F(MainWindowTest, TellsAlertsOneAfterTheOtherAndNothingElseHappensMeanwhile) {
    openWindow();
    bool downloaded = false;
    alerts.show(
        {"Velmora 2.0 is available", "You have 1.0.", "Download", "Later", [&] { downloaded = true; }});
    alerts.show({"You're up to date", "Velmora 1.0 is the latest version."});
    EXPECT_EQ(find("alertTitle")->property("text").toString(), "Velmora 2.0 is available");
    EXPECT_TRUE(find("alertDismiss")->isVisible());
    press(Qt::Key_O, Qt::ControlModifier);
    click(find("backdrop"));
    EXPECT_EQ(actions.asked, QStringList());

    press(Qt::Key_Return);
    EXPECT_TRUE(downloaded);
    EXPECT_EQ(find("alertTitle")->property("text").toString(), "You're up to date");
    EXPECT_FALSE(find("alertDismiss")->isVisible()) << "there is one button";
    press(Qt::Key_Escape);
    EXPECT_FALSE(alerts.open());
    press(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(actions.asked, QStringList("choose"));
}

TEST_F(MainWindowTest, EscapeAndTheOtherButtonCloseAnAlertWithoutItsAction) {
    openWindow();
    bool downloaded = false;
    const AlertText offer{"Velmora 2.0 is available", "", "Download", "Later", [&] { downloaded = true; }};
    alerts.show(offer);
    press(Qt::Key_Escape);
    EXPECT_FALSE(alerts.open());
    alerts.show(offer);
    grab(); // the buttons take their places
    click(find("alertDismiss"));
    EXPECT_FALSE(alerts.open());
    EXPECT_FALSE(downloaded);
    alerts.show(offer);
    grab();
    click(find("alertAccept"));
    EXPECT_TRUE(downloaded);
}

} // namespace
} // namespace velmora::test
