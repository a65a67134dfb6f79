// The same program on Wayland. Only the compositor knows where its windows are, so controls are pressed
// through the screen reader instead of clicked.

#include "tests/support/Archives.h"
#include "tests/window/WindowTest.h"

#include <QSize>

#include <gmock/gmock.h>

#include <csignal>

namespace velmora::test {
namespace {

using testing::IsEmpty;
using testing::Not;

class WaylandTest : public WindowTest {
protected:
    explicit WaylandTest(Display display = Display::wayland)
        : WindowTest(Bus::present, display) {}

    void SetUp() override {
        tone("set/a.wav", 65);
        velmora = start({text(pack(folder / "set.tgz", folder / "set"))});
        awaitShown("00:01:05");
        EXPECT_THAT(leftovers(), Not(IsEmpty()));
    }

    void act(const QString& name) const { reader.activate(awaitShown(name)); }

    void expectEndWithoutATrace() {
        EXPECT_EQ(velmora->wait(), 0);
        EXPECT_THAT(leftovers(), IsEmpty());
    }
};

constexpr QSize firstSize{940, 700 + 28};

TEST_F(WaylandTest, ClosesByItsButton) {
    EXPECT_EQ(window().size(), firstSize);
    act("Close");
    expectEndWithoutATrace();
}

TEST_F(WaylandTest, EndsByItsKey) {
    desktop.press("ctrl+q");
    expectEndWithoutATrace();
}

TEST_F(WaylandTest, CleansUpWhenTheSessionEnds) {
    velmora->send(SIGTERM);
    expectEndWithoutATrace();
}

TEST_F(WaylandTest, MaximisesAndRestoresByItsButton) {
    act("Maximise");
    EXPECT_TRUE(comesTrue([this] { return window().width() > firstSize.width(); }));
    act("Restore");
    EXPECT_TRUE(comesTrue([this] { return window().size() == firstSize; }));
}

TEST_F(WaylandTest, TakesWhatIsTypedInItsPanel) {
    const QString other = tone("b.wav", 4);
    desktop.press("ctrl+o");
    awaitShown("Measure");
    desktop.type(other);
    desktop.press("Return");
    awaitShown("00:00:04");
}

TEST_F(WaylandTest, TakesPathsOfASecondStart) {
    EXPECT_EQ(startAgain({tone("b.wav", 4)}), 0);
    awaitShown("00:00:04");
}

class SmallWaylandTest : public WaylandTest {
protected:
    SmallWaylandTest()
        : WaylandTest(Display::small) {}
};

TEST_F(SmallWaylandTest, ShowsTheTotalWithoutPointerAndKeyboard) {
    EXPECT_LT(window().width(), 840);
    EXPECT_LT(window().height(), 640);
    act("Close");
    expectEndWithoutATrace();
}

TEST_F(SmallWaylandTest, OpensItsPanelWithoutPointerAndKeyboard) {
    act("ZIP…");
    awaitShown("Save a zip of the 1 audio files");
    act("Cancel");
    awaitGone("Cancel");
    act("RESET");
    act("CHOOSE…");
    awaitShown("Choose a folder, archive, or audio files");
    act("Close");
    expectEndWithoutATrace();
}

TEST_F(SmallWaylandTest, MaximisesToASizeBelowItsMinimum) {
    act("Maximise");
    EXPECT_TRUE(comesTrue([this] { return window().width() == 840 && window().height() < 640; }));
    act("Close");
    expectEndWithoutATrace();
}

} // namespace
} // namespace velmora::test
