// The window loses what it needs while an archive is unpacked: the session bus, the display, the session, the
// terminal.

#include "tests/support/Archives.h"
#include "tests/support/OtherPrograms.h"
#include "tests/support/Shell.h"
#include "tests/window/WindowTest.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>

namespace velmora::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class LossTest : public WindowTest {
protected:
    using WindowTest::WindowTest;

    void startToUnpack() {
        velmora = start({text(slowArchive(folder))});
        awaitUnpacking();
    }

    void awaitUnpacking() const {
        awaitShown("Menu");
        EXPECT_TRUE(
            comesTrue([this] { return std::ranges::count(programs(), "tar") == 1 && !leftovers().empty(); }));
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

/// At a logout.
TEST_F(LossTest, OfTheSessionEndsItWithoutATrace) {
    const fs::path address = folder / "address";
    fs::permissions(write(desktop.programs() / "announce", "#!/bin/sh\necho \"$SESSION_MANAGER\" > " +
                                                               shellWord(address.native() + "~") + " && mv " +
                                                               shellWord(address.native() + "~") + " " +
                                                               shellWord(address.native()) + "\n"),
                    fs::perms::owner_all);
    write(desktop.home() / ".xsmstartup", "announce\n");
    Process sessionManager("xsm", {"-session", "test"}, desktop.environment());
    EXPECT_TRUE(comesTrue([&] { return fs::exists(address); }));
    environment.insert("SESSION_MANAGER", QString::fromStdString(read(address)).trimmed());
    startToUnpack();
    sessionManager.send(SIGTERM);
    EXPECT_EQ(velmora->wait(), 0);
    expectNoTrace();
}

/// As when the terminal it was started from is closed.
TEST_F(LossTest, OfTheTerminalEndsItWithoutATrace) {
    const std::string command = shellWord(VELMORA) + " " + shellWord(slowArchive(folder).native());
    velmora = std::make_unique<Process>(
        "script", QStringList{"--quiet", "--command", QString::fromStdString(command), "/dev/null"},
        environment);
    awaitUnpacking();
    velmora->send(SIGKILL);
    EXPECT_EQ(velmora->wait(), -1);
    expectNoTrace();
}

class WaylandLossTest : public LossTest {
protected:
    WaylandLossTest()
        : LossTest(Bus::present, Display::wayland) {}
};

TEST_F(WaylandLossTest, OfTheDisplayEndsItWithoutATrace) {
    startToUnpack();
    desktop.loseDisplay();
    EXPECT_EQ(velmora->wait(), 1);
    EXPECT_THAT(velmora->errors().toStdString(), HasSubstr("Wayland"));
    expectNoTrace();
}

} // namespace
} // namespace velmora::test
