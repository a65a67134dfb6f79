// Started again while the window is open: with a session bus, and without any.

#include "tests/support/Archives.h"
#include "tests/window/WindowTest.h"

#include <gmock/gmock.h>

#include <csignal>
#include <ostream>

namespace velmora::test {

/// How a test's parameter is printed.
void PrintTo(Bus bus, std::ostream* out) {
    *out << (bus == Bus::present ? "WithABus" : "WithoutABus");
}

namespace {

using testing::IsEmpty;
using testing::Not;

class SecondStartTest : public WindowTest, public testing::WithParamInterface<Bus> {
protected:
    SecondStartTest()
        : WindowTest(GetParam()) {}

    /// Waits until the window reports `text`. Asks the clipboard, which needs no bus.
    void awaitReport(const QString& text) const {
        EXPECT_TRUE(comesTrue([&] {
            desktop.press("ctrl+c");
            return desktop.clipboard() == text;
        })) << desktop.clipboard().toStdString();
    }
};

TEST_P(SecondStartTest, HandsItsPathsToTheOpenWindow) {
    const std::string anyBytes = "\xE9 \xC3\xA9\n.wav";
    tone(anyBytes, 3);
    open();
    EXPECT_EQ(startAgain({tone("a.wav", 2), url(folder / anyBytes)}), 0);
    awaitReport("TOTAL RUNTIME  00:00:05   (5 sec)\n2 audio files — 2 ITEMS");
    EXPECT_EQ(startAgain({tone("b.wav", 4)}), 0);
    awaitReport("TOTAL RUNTIME  00:00:04   (4 sec)\n1 audio file — B.WAV");
}

TEST_P(SecondStartTest, LeavesAloneWhatTheRunningScanUnpacks) {
    open({text(slowArchive(folder))});
    EXPECT_TRUE(comesTrue([this] { return !leftovers().empty(); }));
    const std::vector<std::string> unpacked = leftovers();
    EXPECT_EQ(startAgain(), 0);
    EXPECT_EQ(leftovers(), unpacked);
}

TEST_P(SecondStartTest, BringsTheWindowBack) {
    open();
    desktop.minimise();
    EXPECT_TRUE(comesTrue([this] { return desktop.activeTitle().isEmpty(); }));
    EXPECT_EQ(startAgain(), 0);
    awaitActive("Velmora");
}

TEST_P(SecondStartTest, IsTheFirstOnceTheFirstHasGone) {
    open();
    velmora->send(SIGKILL);
    EXPECT_EQ(velmora->wait(), -1);
    open({tone("a.wav", 2)});
    awaitReport("TOTAL RUNTIME  00:00:02   (2 sec)\n1 audio file — A.WAV");
}

TEST_P(SecondStartTest, OfTwoAtTheSameTimeOneStays) {
    const std::unique_ptr<Process> one = start();
    const std::unique_ptr<Process> other = start();
    EXPECT_TRUE(comesTrue([&] { return one->ended() || other->ended(); }));
    awaitActive("Velmora");
    EXPECT_NE(one->ended(), other->ended());
    velmora = start();
    EXPECT_EQ(velmora->wait(), 0);
}

INSTANTIATE_TEST_SUITE_P(Rows, SecondStartTest, testing::Values(Bus::present, Bus::absent),
                         testing::PrintToStringParamName());

} // namespace
} // namespace velmora::test
