// The program with standard descriptors that are closed, full or read by nobody.

#include "tests/cli/ScanProcess.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <utility>

namespace velmora::test {
namespace {

using testing::IsEmpty;

class Descriptors : public testing::Test {
protected:
    /// What the process waits in, as the kernel shows it: "NUMBER DESCRIPTOR ...".
    static bool waitsIn(const ScanProcess& process, long call, int descriptor) {
        const std::string shown = read("/proc/" + std::to_string(process.id()) + "/syscall");
        return shown.starts_with(std::to_string(call) + " 0x" + std::to_string(descriptor) + " ");
    }

    const fs::path folder = freshFolder();
    const fs::path track = writeWav(folder / "Set" / "1.wav", oneSecond);
};

TEST_F(Descriptors, AFullStandardOutputIsAnError) {
    const Finished run = runToEnd({.arguments = {"Set"}, .folder = folder, .beforeStart = [] {
                                       ::dup2(::open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
                                   }});
    EXPECT_EQ(run.errors, "velmora-scan: cannot write the report: No space left on device\n");
    EXPECT_EQ(run.status, 1);
}

TEST_F(Descriptors, AFullStandardOutputDoesNotHideWhatIsWorse) {
    const auto full = [] { ::dup2(::open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO); };
    EXPECT_EQ(runToEnd({.arguments = {"missing"}, .folder = folder, .beforeStart = full}).status, 3);
    EXPECT_EQ(runToEnd({.arguments = {"-h"}, .beforeStart = full}).status, 1);
}

TEST_F(Descriptors, AReaderThatWentAwayIsAnError) {
    const Finished run = runToEnd({.arguments = {"Set"}, .folder = folder, .beforeStart = [] {
                                       std::array<int, 2> ends{};
                                       (void)!::pipe(ends.data());
                                       ::dup2(ends[1], STDOUT_FILENO);
                                       ::close(ends[0]);
                                   }});
    EXPECT_EQ(run.errors, "velmora-scan: cannot write the report: Broken pipe\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(privateDirectories(), IsEmpty());
}

TEST_F(Descriptors, AClosedStandardOutputIsAnError) {
    const Finished run =
        runToEnd({.arguments = {"Set"}, .folder = folder, .beforeStart = [] { ::close(STDOUT_FILENO); }});
    EXPECT_EQ(run.errors, "velmora-scan: cannot write the report: Bad file descriptor\n");
    EXPECT_EQ(run.status, 1);
}

TEST_F(Descriptors, AClosedStandardInputIsNoPathList) {
    const Finished run =
        runToEnd({.arguments = {"-0", "-"}, .folder = folder, .beforeStart = [] { ::close(STDIN_FILENO); }});
    EXPECT_EQ(run.errors, "velmora-scan: cannot read the list '-': Bad file descriptor\n");
    EXPECT_EQ(run.status, 2);
}

TEST_F(Descriptors, NoneClosedIsTakenForAFile) {
    write(folder / "Set" / "broken.mp3", "no audio");
    shell("tar -czf set.tgz Set", folder);
    const Finished run =
        runToEnd({.arguments = {"-z", "Mix.zip", "set.tgz", "missing"}, .folder = folder, .beforeStart = [] {
                      for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
                          ::close(descriptor);
                      }
                  }});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(shell("unzip -p Mix.zip Mix/Set/1.wav", folder) == read(track));
}

TEST_F(Descriptors, WhileTheListIsAwaitedASignalEndsTheProgram) {
    const fs::path list = folder / "list";
    shell("mkfifo list", folder);
    const int writer = ::open(list.c_str(), O_RDWR | O_CLOEXEC);
    ScanProcess process({.arguments = {"-0", "-"}, .input = list});
    waitUntil([&] { return waitsIn(process, SYS_read, STDIN_FILENO); });

    process.send(SIGTERM);

    EXPECT_EQ(process.wait().status, 130);
    ::close(writer);
}

/// A pipe that is standard output of a scan whose report is longer than the pipe holds.
class LongReport : public Descriptors {
protected:
    LongReport() {
        for (int copy = 1; copy < lines; ++copy) {
            fs::create_hard_link(track,
                                 folder / "Set" / (std::string(150, 'x') + std::to_string(copy) + ".wav"));
        }
        EXPECT_EQ(::pipe2(m_ends.data(), O_CLOEXEC), 0);
    }

    ~LongReport() override {
        ::close(m_ends[0]);
        closeWriteEnd();
    }

    ScanProcess start() const {
        return ScanProcess({.arguments = {"-f", "Set"}, .folder = folder, .beforeStart = [this] {
                                ::dup2(m_ends[1], STDOUT_FILENO);
                            }});
    }

    void waitUntilFull() const {
        waitUntil([this] {
            int held = 0;
            return ::ioctl(m_ends[0], FIONREAD, &held) == 0 && held > 60'000;
        });
    }

    void doNotBlock() const { ::fcntl(m_ends[1], F_SETFL, O_NONBLOCK); }

    std::string readToEnd() {
        closeWriteEnd();
        std::string text;
        std::array<char, 4096> buffer{};
        while (const ssize_t got = ::read(m_ends[0], buffer.data(), buffer.size())) {
            text.append(buffer.data(), static_cast<std::size_t>(got));
        }
        return text;
    }

    static constexpr int lines = 1000;

private:
    void closeWriteEnd() { ::close(std::exchange(m_ends[1], -1)); }

    std::array<int, 2> m_ends{};
};

TEST_F(LongReport, ThatNobodyReadsDoesNotKeepASignalFromEndingTheProgram) {
    ScanProcess process = start();
    waitUntilFull();
    EXPECT_THAT(privateDirectories(), IsEmpty()) << "nothing is left to clean up by then";

    process.send(SIGINT);

    EXPECT_EQ(process.wait().status, 130);
}

TEST_F(LongReport, IsWrittenWholeThoughStandardOutputDoesNotBlock) {
    doNotBlock();
    ScanProcess process = start();
    waitUntilFull();

    const std::string report = readToEnd();

    EXPECT_EQ(process.wait().status, 0);
    EXPECT_EQ(std::ranges::count(report, '\n'), lines);
}

} // namespace
} // namespace velmora::test
