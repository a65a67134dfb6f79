// Long texts in alerts.

#include "tests/ui/UiTest.h"

#include <QAccessible>
#include <QTest>

#include <gtest/gtest.h>

#include <vector>

namespace velmora::test {
namespace {

class AlertTest : public UiTest {
protected:
    void showNotes(int lines) {
        QString notes;
        for (int i = 1; i <= lines; ++i) {
            notes += QStringLiteral("%1. Reads one more kind.\n").arg(i);
        }
        alerts.show({"Velmora 2.0 is available", notes.trimmed(), "Download", "Later"});
        grab(); // it is laid out
    }

    double position() { return find("scrolledView")->property("contentY").toDouble(); }

    double end() {
        return find("scrolledView")->property("contentHeight").toDouble() - find("scrolledView")->height();
    }
};

TEST_F(AlertTest, ScrollsLongNotesByKeys) {
    openWindow();
    showNotes(60);
    EXPECT_TRUE(find("scrollBar")->isVisible());
    EXPECT_GT(end(), 500);
    EXPECT_LT(place(find("alertAccept")).bottom(), window->height()) << "its buttons stay in the window";
    press(Qt::Key_Down);
    const double step = position();
    EXPECT_GT(step, 0);
    press(Qt::Key_PageDown);
    EXPECT_GT(position(), step + 100);
    press(Qt::Key_End);
    EXPECT_EQ(position(), end());
    press(Qt::Key_Down);
    EXPECT_EQ(position(), end()) << "there is no more";
    press(Qt::Key_PageUp);
    press(Qt::Key_Up);
    EXPECT_LT(position(), end() - 100);
    press(Qt::Key_Home);
    EXPECT_EQ(position(), 0);
    press(Qt::Key_End);
    press(Qt::Key_Escape);
    showNotes(61);
    EXPECT_EQ(position(), 0) << "the next notes are shown from their beginning";
}

TEST_F(AlertTest, ScrollsLongNotesByTheWheel) {
    openWindow();
    showNotes(60);
    const QPointF middle = place(find("scrolledView")).center();
    QWheelEvent down(middle, window->mapToGlobal(middle), {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(window.get(), &down);
    EXPECT_TRUE(comesTrue([this] { return position() > 0; }));
}

TEST_F(AlertTest, TurnsItsSettingByPointerKeyAndScreenReader) {
    openWindow();
    std::vector<bool> turned;
    alerts.show({.title = "About", .body = "", .setting = AlertSwitch{"Look", true, [&](bool on) {
                                                                          turned.push_back(on);
                                                                      }}});
    QQuickItem* line = find("alertSetting");
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(line);
    ASSERT_TRUE(line->isVisible());
    EXPECT_EQ(spoken->role(), QAccessible::CheckBox);
    EXPECT_EQ(spoken->text(QAccessible::Name), "Look");
    EXPECT_TRUE(spoken->state().checkable);
    EXPECT_TRUE(spoken->state().checked);
    const qreal knobWhenOn = find("switchKnob")->x();

    click(line);
    EXPECT_EQ(turned, std::vector<bool>{false});
    EXPECT_FALSE(spoken->state().checked);
    EXPECT_LT(find("switchKnob")->x(), knobWhenOn);
    press(Qt::Key_Tab);
    EXPECT_TRUE(line->hasActiveFocus());
    press(Qt::Key_Space);
    spoken->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(turned, (std::vector<bool>{false, true, false}));
    EXPECT_TRUE(line->hasActiveFocus()) << "turning it leaves the focus where it is";
    press(Qt::Key_Tab);
    EXPECT_TRUE(find("alertAccept")->hasActiveFocus());
    EXPECT_TRUE(alerts.open());

    press(Qt::Key_Return);
    alerts.show({"About", ""});
    EXPECT_FALSE(line->isVisible()) << "this alert has no setting";
    press(Qt::Key_Tab);
    EXPECT_TRUE(find("alertAccept")->hasActiveFocus());
    alerts.turn();
    EXPECT_EQ(turned.size(), 3U);
}

TEST_F(AlertTest, NeedsNoBarForAShortText) {
    openWindow();
    showNotes(3);
    EXPECT_FALSE(find("scrollBar")->isVisible());
    press(Qt::Key_Down);
    EXPECT_EQ(position(), 0);
}

} // namespace
} // namespace velmora::test
