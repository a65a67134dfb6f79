// The window used with the keyboard alone, and what it tells screen readers.

#include "tests/staged/StagedWindow.h"
#include "tests/ui/UiTest.h"

#include <QAccessible>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

using Phase = ScanModel::Phase;
using testing::ElementsAre;

const ScanState savedState = {.phase = Phase::done,
                              .status = "COMPLETE",
                              .seconds = 3725.4,
                              .fileCount = 12,
                              .unreadable = 2,
                              .zip = ZipDone{"/music/Live Set.zip"}};

class KeyboardTest : public UiTest {
protected:
    std::string focused() { return window->activeFocusItem()->objectName().toStdString(); }

    /// The controls that get the focus with `count` presses of Tab. Each of them shows that it has it.
    std::vector<std::string> tabs(int count, Qt::KeyboardModifiers modifiers = {}) {
        std::vector<std::string> reached;
        for (int i = 0; i < count; ++i) {
            const QImage before = grab();
            press(modifiers.testFlag(Qt::ShiftModifier) ? Qt::Key_Backtab : Qt::Key_Tab, modifiers);
            reached.push_back(focused());
            EXPECT_NE(grab(), before) << reached.back();
        }
        return reached;
    }
};

TEST_F(KeyboardTest, ReachesEveryControlOfTheWindowInTurn) {
    scan.show(savedState);
    openWindow();
    EXPECT_THAT(tabs(12),
                ElementsAre("countLink", "unreadableLink", "copyRuntimeButton", "copyFileListButton",
                            "zipButton", "resetButton", "zipStatus", "menuButton", "minimizeButton",
                            "maximizeButton", "closeButton", "countLink"));
    EXPECT_THAT(tabs(2, Qt::ShiftModifier), ElementsAre("closeButton", "maximizeButton"));
    scan.show({});
    EXPECT_THAT(tabs(4), ElementsAre("closeButton", "chooseButton", "menuButton", "minimizeButton"));
}

TEST_F(KeyboardTest, PressesTheButtonsOfTheTitleBarToo) {
    openWindow();
    tabs(2);
    press(Qt::Key_Space);
    EXPECT_TRUE(find("menu")->isVisible());
    press(Qt::Key_Escape);
    tabs(3);
    ASSERT_EQ(focused(), "closeButton");
    press(Qt::Key_Return);
    EXPECT_TRUE(comesTrue([&] { return !window->isVisible(); }));
}

TEST_F(KeyboardTest, GivesTheFocusBackWhenTheMenuCloses) {
    openWindow();
    tabs(1);
    press(Qt::Key_F10);
    EXPECT_EQ(focused(), "aboutRow");
    press(Qt::Key_Escape);
    EXPECT_EQ(focused(), "chooseButton");
}

TEST_F(KeyboardTest, GivesTheFocusToTheFirstButtonOfTheNextPhase) {
    scan.show(savedState);
    openWindow();
    tabs(6);
    ASSERT_EQ(focused(), "resetButton");
    scan.show({});
    EXPECT_EQ(focused(), "chooseButton");
    scan.show({.phase = Phase::scanning});
    EXPECT_EQ(focused(), "chooseButton") << "it stays where its button stays";
    scan.show(savedState);
    EXPECT_EQ(focused(), "copyRuntimeButton");
}

TEST_F(KeyboardTest, LeadsThePointersRowOfTheMenu) {
    openWindow();
    press(Qt::Key_F10);
    hover(find("quitRow"));
    EXPECT_EQ(focused(), "quitRow") << "only one row is marked";
}

TEST_F(KeyboardTest, KeepsTheFocusInAnAlertAndGivesItBackAfterwards) {
    openWindow();
    tabs(1);
    alerts.show({"Velmora 2.0 is available", "You have 1.0.", "Download", "Later"});
    alerts.show({"You're up to date", ""});
    EXPECT_EQ(focused(), "alertAccept");
    EXPECT_THAT(tabs(3), ElementsAre("alertDismiss", "alertAccept", "alertDismiss"));
    EXPECT_THAT(tabs(1, Qt::ShiftModifier), ElementsAre("alertAccept"));
    tabs(1);
    press(Qt::Key_Space);
    ASSERT_EQ(find("alertTitle")->property("text"), "You're up to date");
    EXPECT_EQ(focused(), "alertAccept") << "the pressed button is gone";
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "alertAccept") << "it is the only one";
    press(Qt::Key_Escape);
    EXPECT_EQ(focused(), "chooseButton");
}

TEST_F(KeyboardTest, NamesEachKeyInTheToolTipOfItsControl) {
    openWindow();
    const auto tip = [&](const char* name) {
        return find(name)->property("toolTip").toString().toStdString();
    };
    EXPECT_THAT(tip("chooseButton"), testing::EndsWith("Ctrl+O"));
    EXPECT_THAT(tip("copyRuntimeButton"), testing::EndsWith("Ctrl+C"));
    EXPECT_THAT(tip("copyFileListButton"), testing::EndsWith("Ctrl+Shift+C"));
    EXPECT_THAT(tip("zipButton"), testing::EndsWith("Ctrl+S"));
    EXPECT_THAT(tip("resetButton"), testing::EndsWith("Esc"));
    EXPECT_THAT(tip("menuButton"), testing::EndsWith("F10"));
}

class ToolTipTest : public UiTest {
protected:
    /// Whether the tool tip of `control` begins with `words` and lies in the window.
    bool isReadable(const char* control, const char* words) {
        hover(find(control));
        if (!showsToolTips(1)) {
            return false;
        }
        const QQuickItem* shown = visibleToolTips(*window).constFirst();
        return shown->property("text").toString().startsWith(QLatin1String(words)) &&
               QRect({}, window->size()).contains(place(shown));
    }

    /// Whether there comes a time at which exactly `count` tool tips are shown.
    bool showsToolTips(qsizetype count) {
        return comesTrue([&] { return visibleToolTips(*window).size() == count; });
    }
};

TEST_F(ToolTipTest, GoesAwayWithThePointer) {
    openWindow();
    for (const char* control : {"chooseButton", "menuButton"}) {
        hover(find(control));
        EXPECT_TRUE(showsToolTips(1)) << control;
        hoverNothing();
        EXPECT_TRUE(showsToolTips(0)) << control;
    }
}

TEST_F(ToolTipTest, GivesWayToThatOfTheNextControl) {
    openWindow();
    EXPECT_TRUE(isReadable("minimizeButton", "Minimise"));
    EXPECT_TRUE(isReadable("maximizeButton", "Maximise"));
}

TEST_F(ToolTipTest, StandsBesideItsControlInTheWindow) {
    ScanState failed = savedState;
    failed.zip = ZipFailed{std::string(400, 'x')};
    scan.show(failed);
    openWindow();
    EXPECT_TRUE(isReadable("menuButton", "Menu"));
    EXPECT_TRUE(isReadable("closeButton", "Close"));
    EXPECT_TRUE(isReadable("zipButton", "Pack"));
    EXPECT_TRUE(isReadable("zipLine", "ZIP FAILED")) << "what did not fit into its line";
}

class SpeechTest : public UiTest {
protected:
    static std::string nameOf(QAccessibleInterface* item) {
        return item->text(QAccessible::Name).toStdString();
    }

    QAccessibleInterface* accessible(const char* name) {
        return QAccessible::queryAccessibleInterface(find(name));
    }

    /// Records what a screen reader speaks: the name of each notification that appears.
    void listen(const char* name) {
        const QQuickItem* item = find(name);
        ASSERT_EQ(accessible(name)->role(), QAccessible::Notification);
        QObject::connect(item, &QQuickItem::visibleChanged, item, [this, item, name] {
            if (item->isVisible()) {
                spoken += nameOf(accessible(name));
            }
        });
    }

    /// Waits until words are spoken. Returns all that were spoken since the last call.
    std::string nextSpoken() {
        EXPECT_TRUE(comesTrue([this] { return !spoken.empty(); }));
        return std::exchange(spoken, {});
    }

    std::string spoken;
};

TEST_F(SpeechTest, NamesEveryControl) {
    scan.show(savedState);
    openWindow();
    for (const auto& [item, name] :
         std::vector<std::pair<const char*, std::string>>{{"countLink", "12 FILES · ZERO KB"},
                                                          {"unreadableLink", "2 files could not be read"},
                                                          {"copyRuntimeButton", "COPY RUNTIME"},
                                                          {"copyFileListButton", "COPY FILE LIST"},
                                                          {"zipButton", "ZIP…"},
                                                          {"resetButton", "RESET"},
                                                          {"zipStatus", "ZIP SAVED · Live Set.zip"},
                                                          {"menuButton", "Menu"},
                                                          {"minimizeButton", "Minimise"},
                                                          {"maximizeButton", "Maximise"},
                                                          {"closeButton", "Close"}}) {
        EXPECT_EQ(nameOf(accessible(item)), name);
        EXPECT_EQ(accessible(item)->role(), QAccessible::Button) << name;
        EXPECT_TRUE(accessible(item)->state().focusable) << name;
    }
    for (const auto& [item, name] :
         std::vector<std::pair<const char*, std::string>>{{"wordmark", "VELMORA"},
                                                          {"totalClock", "01:02:05"},
                                                          {"totalWords", "1 hr  2 min  5 sec"},
                                                          {"pillWords", "READY"}}) {
        EXPECT_EQ(nameOf(accessible(item)), name);
        EXPECT_EQ(accessible(item)->role(), QAccessible::StaticText) << name;
    }
    press(Qt::Key_F10);
    EXPECT_EQ(nameOf(accessible("updatesRow")), "Check for Updates…");
    EXPECT_EQ(accessible("updatesRow")->role(), QAccessible::MenuItem);
    alerts.show({"You're up to date", "Velmora 1.0 is the latest version."});
    EXPECT_EQ(nameOf(accessible("alertBox")), "You're up to date");
    EXPECT_EQ(accessible("alertBox")->role(), QAccessible::AlertMessage);
}

TEST_F(SpeechTest, LetsAScreenReaderPressAControl) {
    openWindow();
    accessible("chooseButton")->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(actions.asked, QStringList("choose"));
}

TEST_F(SpeechTest, TellsHowFarAScanIs) {
    scan.show({.phase = Phase::scanning, .found = 8});
    openWindow();
    EXPECT_EQ(accessible("progressBar")->role(), QAccessible::ProgressBar);
    EXPECT_EQ(nameOf(accessible("progressBar")), "0 / 8");
    scan.show({.phase = Phase::scanning, .processed = 4, .found = 8, .progress = 0.5});
    EXPECT_EQ(nameOf(accessible("progressBar")), "4 / 8");
}

TEST_F(SpeechTest, SpeaksEachStatusAndTheTotal) {
    openWindow();
    listen("scanAnnouncement");
    scan.show({.phase = Phase::scanning, .status = "READING SOURCE"});
    EXPECT_EQ(nextSpoken(), "READING SOURCE");
    scan.show({.phase = Phase::scanning, .status = "MEASURING", .found = 12});
    EXPECT_EQ(nextSpoken(), "MEASURING");
    scan.show({.phase = Phase::scanning, .status = "MEASURING", .processed = 4, .found = 12});
    scan.show(savedState);
    EXPECT_EQ(nextSpoken(), "1 hr  2 min  5 sec  2 files could not be read");
    scan.show({.phase = Phase::empty, .status = "NO AUDIO FOUND"});
    EXPECT_EQ(nextSpoken(), "NO AUDIO FOUND");
}

TEST_F(SpeechTest, SpeaksOnlyTheEndOfAQuickScan) {
    openWindow();
    listen("scanAnnouncement");
    scan.show({.phase = Phase::scanning, .status = "READING SOURCE"});
    scan.show({.phase = Phase::scanning, .status = "MEASURING", .found = 12});
    scan.show({.phase = Phase::empty, .status = "NO READABLE AUDIO"});
    EXPECT_EQ(nextSpoken(), "NO READABLE AUDIO");
}

TEST_F(SpeechTest, SpeaksWhenAPackingBeginsAndEnds) {
    scan.show({.phase = Phase::done});
    openWindow();
    listen("zipAnnouncement");
    for (int packed = 0; packed < 3; ++packed) {
        scan.show({.phase = Phase::done, .zip = ZipWorking{packed, 3}});
    }
    EXPECT_EQ(nextSpoken(), "ZIPPING");
    scan.show({.phase = Phase::done, .zip = ZipDone{"/music/Live Set.zip"}});
    EXPECT_EQ(nextSpoken(), "ZIP SAVED · Live Set.zip");
}

} // namespace
} // namespace velmora::test
