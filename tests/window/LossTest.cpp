// The window loses what it needs while an archive is unpacked: the session bus, the display.

#include "tests/support/Archives.h"
#include "tests/support/OtherPrograms.h"
#include "tests/window/WindowTest.h"

#include <gmock/gmock.h>

namespace velmora::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class LossTest : public WindowTest {
protected:
    using WindowTest::WindowTest;

    void startToUnpack() {
        velmora = start({text(slowArchive(folder))});
        awaitShown("Menu");
        EXPECT_TRUE(comesTrue([this] { return programs().size() > 1 && !leftovers().empty(); }));
    }

    /// The window's program and its tools.
    std::vector<std::string> programs() const { return programsWorkingIn(desktop.temporary().native()); }

    void expectNoTrace() const {
        EXPECT_TRUE(comesTrue([this] { return programs().empty(); })) << "the tools die with it";
        EXPECT_THAT(privateDirectories(), IsEmpty());
    }
};

TEST_F(LossTest, OfTheBusIsNotNoticed) {
    startToUnpack();
    desktop.loseBus();
    desktop.press("Escape");
    EXPECT_TRUE(comesTrue([this] { return programs().size() == 1; })) << "the tool comes to its end";
    desktop.press("ctrl+q");
    EXPECT_EQ(velmora->wait(), 0);
    expectNoTrace();
}

TEST_F(LossTest, OfTheDisplayEndsItWithoutATrace) {
    startToUnpack();
    desktop.loseDisplay();
    EXPECT_EQ(velmora->wait(), 1);
    EXPECT_THAT(velmora->errors().toStdString(), HasSubstr("X11 connection broke"));
    expectNoTrace();
}

class WaylandLossTest : public LossTest {
protected:
    WaylandLossTest()
        : LossTest(Bus::present, Display::wayland) {}
};

TEST_F(WaylandLossTest, OfTheDisplayEndsIt) {
    startToUnpack();
    desktop.loseDisplay();
    EXPECT_NE(velmora->wait(), 0);
    EXPECT_THAT(velmora->errors().toStdString(), HasSubstr("Wayland"));
    EXPECT_TRUE(comesTrue([this] { return programs().empty(); })) << "the tools die with it";
}

} // namespace
} // namespace velmora::test
