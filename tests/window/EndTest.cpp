// The ways the window ends, and what it leaves.

#include "tests/support/Archives.h"
#include "tests/support/OtherPrograms.h"
#include "tests/window/WindowTest.h"

#include <QDBusConnectionInterface>

#include <gmock/gmock.h>

#include <csignal>
#include <ostream>

namespace velmora::test {
namespace {

using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class EndTest : public WindowTest {
protected:
    /// Opens the window on an archive that takes its time, and waits until a tool unpacks it.
    void openWhileUnpacking() {
        open({text(slowArchive(folder))});
        EXPECT_TRUE(comesTrue([this] { return programs().size() > 1 && !leftovers().empty(); }));
    }

    /// Opens the window on an archive and waits for its total, which keeps what was unpacked.
    void openOnResult() {
        tone("set/a.wav", 3);
        open({text(pack(folder / "set.tgz", folder / "set"))});
        awaitShown("00:00:03");
        EXPECT_THAT(leftovers(), Not(IsEmpty()));
    }

    /// Lets `fault` (tests/faults/FaultPlan.h) befall the program.
    void meet(const QString& fault) {
        environment.insert("LD_PRELOAD", VELMORA_FAULT_INJECTOR);
        environment.insert("VELMORA_FAULT", fault);
        environment.insert("VELMORA_FAULT_LOG", text(m_calls));
    }

    void awaitFault() const {
        EXPECT_TRUE(comesTrue([this] { return read(m_calls).find("\n! ") != std::string::npos; }));
    }

    /// Whether the program itself has ended its run: where the main thread is held up, another one does.
    bool endedInOrder() const { return read(m_calls).find("_exit 1 main thread\n") != std::string::npos; }

    /// Opens the window on a file on a share that stops answering.
    void openOnASilentShare() {
        meet("pread:1:block:1.wav");
        open({tone("1.wav", 1)});
        awaitFault();
    }

    void expectEndWithoutATrace() {
        EXPECT_EQ(velmora->wait(), 0);
        EXPECT_THAT(programs(), IsEmpty());
        EXPECT_THAT(privateDirectories(), IsEmpty());
    }

    /// The window's program and its tools.
    std::vector<std::string> programs() const { return programsWorkingIn(desktop.temporary().native()); }

private:
    const fs::path m_calls = write(folder / "calls");
};

TEST_F(EndTest, IsAKeyAway) {
    openOnResult();
    desktop.press("ctrl+q");
    expectEndWithoutATrace();
}

TEST_F(EndTest, IsACommandOfTheMenu) {
    openOnResult();
    click("Menu");
    click("Quit");
    expectEndWithoutATrace();
}

TEST_F(EndTest, IsAButtonOfTheTitleBar) {
    openOnResult();
    click("Close");
    expectEndWithoutATrace();
}

TEST_F(EndTest, ComesFromTheWindowManagerWhileAnArchiveIsUnpacked) {
    openWhileUnpacking();
    desktop.press("alt+F4");
    expectEndWithoutATrace();
}

TEST_F(EndTest, ComesThoughAShareDoesNotAnswer) {
    openOnASilentShare();
    desktop.press("ctrl+q");
    expectEndWithoutATrace();
}

TEST_F(EndTest, ComesAtOnceThoughTheNameOfTheServerIsNotResolved) {
    environment.remove("VELMORA_MANIFEST_URL"); // the maker's server, which is asked for by its name
    meet("getaddrinfo:1+:block");
    open();
    awaitFault();
    desktop.press("ctrl+q");
    expectEndWithoutATrace();
    EXPECT_TRUE(endedInOrder());
}

TEST_F(EndTest, GivesTheNameOnTheBusBackAtOnce) {
    meet("unlink:1+:block:scan-velmora-"); // it never ends
    open();
    EXPECT_TRUE(desktop.bus().interface()->isServiceRegistered("com.orventa.Velmora"));
    desktop.press("ctrl+q");
    EXPECT_TRUE(
        comesTrue([this] { return !desktop.bus().interface()->isServiceRegistered("com.orventa.Velmora"); }));
    awaitFault();
    EXPECT_FALSE(velmora->ended());
    velmora->send(SIGKILL);
}

TEST_F(EndTest, ResetLeavesNothingOnceUnpackingHasEnded) {
    openOnResult();
    desktop.press("Escape");
    EXPECT_TRUE(comesTrue([this] { return leftovers().empty(); }));
}

TEST_F(EndTest, NextStartSweepsWhatACrashLeftAndNothingElse) {
    write(desktop.temporary() / "velmora-my-recordings" / "a.wav");
    openWhileUnpacking();
    velmora->send(SIGKILL);
    EXPECT_EQ(velmora->wait(), -1);
    EXPECT_TRUE(comesTrue([this] { return programs().empty(); })) << "the tools die with it";
    EXPECT_THAT(leftovers(), Not(IsEmpty()));
    open();
    EXPECT_THAT(programs(), SizeIs(1));
    EXPECT_THAT(leftovers(), IsEmpty());
    EXPECT_THAT(privateDirectories(), SizeIs(1));
    EXPECT_TRUE(fs::exists(desktop.temporary() / "velmora-my-recordings" / "a.wav"));
}

struct SignalCase {
    std::string name;
    int number;
};

std::ostream& operator<<(std::ostream& out, const SignalCase& row) {
    return out << row.name;
}

class SignalTest : public EndTest, public testing::WithParamInterface<SignalCase> {};

TEST_P(SignalTest, EndsItWithoutATraceWhileAnArchiveIsUnpacked) {
    openWhileUnpacking();
    velmora->send(GetParam().number);
    expectEndWithoutATrace();
}

TEST_P(SignalTest, EndsItThoughAShareDoesNotAnswer) {
    openOnASilentShare();
    velmora->send(GetParam().number);
    velmora->send(GetParam().number);
    expectEndWithoutATrace();
}

TEST_P(SignalTest, EndsItUnderAnOpenPanel) {
    openOnResult();
    desktop.press("ctrl+o");
    awaitShown("Measure");
    velmora->send(GetParam().number);
    expectEndWithoutATrace();
}

INSTANTIATE_TEST_SUITE_P(Rows, SignalTest,
                         testing::Values(SignalCase{"Interrupt", SIGINT}, SignalCase{"Terminate", SIGTERM},
                                         SignalCase{"HangUp", SIGHUP}),
                         [](const auto& row) { return row.param.name; });

} // namespace
} // namespace velmora::test
