#include "system/ChildProcess.h"

#include "system/RegularFile.h"
#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <sstream>
#include <thread>

namespace velmora {

namespace {

using test::freshFolder;
using test::write;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

constexpr int killed = 128 + SIGKILL;

/// The two ends of a pipe. Neither is open in a child, except as its standard output.
struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        reading = FileDescriptor(ends[0]);
        writing = FileDescriptor(ends[1]);
    }

    /// Waits for one byte; false at the end.
    bool awaitByte() const {
        char byte = 0;
        return ::read(reading.get(), &byte, 1) == 1;
    }

    FileDescriptor reading;
    FileDescriptor writing;
};

/// What `tool` with `args` writes to its standard output.
std::string outputOf(const fs::path& tool, const std::vector<std::string>& args) {
    const fs::path path = freshFolder() / "output";
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    EXPECT_EQ(runChild(tool, args, file.get()), 0);
    return test::read(path);
}

std::string shellOutput(const std::string& script) {
    return outputOf("/bin/sh", {"-c", script});
}

std::optional<int> shellStatus(const std::string& script, const ChildLimits& limits = {}) {
    return runChild("/bin/sh", {"-c", script}, -1, limits);
}

TEST(ChildProcess, ReturnsHowTheChildEnded) {
    EXPECT_EQ(shellStatus("exit 0"), 0);
    EXPECT_EQ(shellStatus("exit 7"), 7);
    EXPECT_EQ(shellStatus("kill -TERM $$"), 128 + SIGTERM);
}

TEST(ChildProcess, HandsOverArgumentsAsTheyAre) {
    const std::vector<std::string> args = {"%s|%s|%s|%s", "", "two words", "-x", "caf\xE9\n*[?]$HOME'\""};
    EXPECT_EQ(outputOf("/usr/bin/printf", args), "|two words|-x|caf\xE9\n*[?]$HOME'\"");
}

TEST(ChildProcess, CannotStartWhatIsNotExecutable) {
    const fs::path folder = freshFolder();
    const fs::path text = write(folder / "text", "no program");
    EXPECT_EQ(runChild(folder / "missing", {}, -1), std::nullopt);
    EXPECT_EQ(runChild(folder, {}, -1), std::nullopt);
    EXPECT_EQ(runChild(text, {}, -1), std::nullopt);
    fs::permissions(text, fs::perms(0700));
    EXPECT_TRUE(isExecutableFile(text));
    EXPECT_EQ(runChild(text, {}, -1), std::nullopt);
}

TEST(ChildProcess, DiscardsOutputThatNobodyWants) {
    EXPECT_EQ(shellOutput("readlink /proc/self/fd/1 >&2; readlink /proc/self/fd/2"), "/dev/null\n");
    EXPECT_EQ(shellStatus("test \"$(readlink /proc/$$/fd/1)\" = /dev/null"), 0);
}

TEST(ChildProcess, HasAStandardInputThatCannotBeRead) {
    EXPECT_EQ(shellOutput("readlink /proc/self/fd/0"), "/dev/null\n");
    EXPECT_EQ(shellOutput("cat || echo refused"), "refused\n");
}

TEST(ChildProcess, InheritsNoOtherDescriptor) {
    const FileDescriptor inheritable(::open("/dev/zero", O_RDONLY)); // NOLINT: without O_CLOEXEC on purpose
    ASSERT_TRUE(inheritable);
    EXPECT_EQ(shellOutput("ls /proc/$$/fd"), "0\n1\n2\n");
}

TEST(ChildProcess, LeadsASessionOfItsOwn) {
    std::istringstream fields(outputOf("/bin/cat", {"/proc/self/stat"}));
    std::string word;
    std::vector<std::string> words;
    while (fields >> word) {
        words.push_back(word);
    }
    ASSERT_GT(words.size(), 6U);
    EXPECT_EQ(words[4], words[0]); // process group
    EXPECT_EQ(words[5], words[0]); // session
    EXPECT_EQ(words[6], "0");      // terminal: none
}

TEST(ChildProcess, CannotReachTheUsersTerminal) {
    const std::string written = test::onTerminal([] {
        EXPECT_EQ(std::system("echo reached > /dev/tty"), 0);
        EXPECT_NE(shellStatus("echo asked > /dev/tty"), 0);
    });
    EXPECT_THAT(written, HasSubstr("reached"));
    EXPECT_THAT(written, Not(HasSubstr("asked")));
}

TEST(ChildProcess, NamesAreUtf8UnderEveryLocaleOfTheUser) {
    ::setenv("LC_ALL", "C", 1);
    ::setenv("LANG", "de_DE.ISO-8859-1", 1);
    ::setenv("LANGUAGE", "de", 1);
    EXPECT_EQ(shellOutput("echo $LC_ALL,$LANGUAGE"), "C.UTF-8,\n");
    EXPECT_EQ(shellOutput("locale charmap"), "UTF-8\n");
    EXPECT_EQ(shellOutput("env | grep -c ^LC_ALL="), "1\n");
}

TEST(ChildProcess, FindsOnlyTheSystemsPrograms) {
    const fs::path folder = freshFolder();
    fs::permissions(write(folder / "gzip", "#!/bin/sh\necho wrong\n"), fs::perms(0700));
    ::setenv("PATH", folder.c_str(), 1);
    EXPECT_EQ(shellOutput("echo $PATH; command -v gzip"), "/usr/bin:/bin\n/usr/bin/gzip\n");
}

TEST(ChildProcess, DropsVariablesThatHoldOptionsOfTools) {
    for (const char* name : {"TAR_OPTIONS", "TAR_READER_OPTIONS", "TAPE", "UNZIP", "UNZIPOPT", "GZIP", "BZIP",
                             "BZIP2", "XZ_OPT", "XZ_DEFAULTS", "POSIXLY_CORRECT"}) {
        ::setenv(name, "--nonsense", 1);
    }
    ::setenv("KEPT", "yes", 1);
    const std::string environment = outputOf("/usr/bin/env", {});
    EXPECT_THAT(environment, Not(HasSubstr("--nonsense")));
    EXPECT_THAT(environment, HasSubstr("KEPT=yes\n"));
}

TEST(ChildProcess, StartsWithDefaultSignals) {
    std::signal(SIGTERM, SIG_IGN);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, nullptr), 0);
    const std::string status = outputOf("/bin/cat", {"/proc/self/status"});
    constexpr unsigned long long nameable = 0x7FFFFFFF; // signals 1 to 31
    for (const std::string label : {"SigBlk:\t", "SigIgn:\t"}) {
        const std::size_t start = status.find(label);
        ASSERT_NE(start, std::string::npos);
        EXPECT_EQ(std::stoull(status.substr(start + label.size()), nullptr, 16) & nameable, 0U) << label;
    }
}

TEST(ChildProcess, LearnsTheExitStatusAlsoWhereChildrenAreIgnored) {
    std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(shellStatus("exit 7"), 7);
}

TEST(ChildProcess, IsKilledWhenItsTimeIsOver) {
    EXPECT_EQ(shellStatus("sleep 1000", {.stop = {}, .deadline = std::chrono::milliseconds(50)}), killed);
}

TEST(ChildProcess, MayEndBeforeItsTimeIsOver) {
    EXPECT_EQ(shellStatus("exit 7", {.stop = {}, .deadline = std::chrono::hours(1000)}), 7);
}

/// What is heard of a child that runs `script`.
std::string heardOf(const std::string& script, int status = 0) {
    std::string heard;
    EXPECT_EQ(shellStatus(script, {.hear = [&](std::string_view text) { heard += text; }}), status);
    return heard;
}

TEST(ChildProcess, IsHeardByWhoeverListens) {
    EXPECT_EQ(heardOf("echo to nobody; echo first >&2; echo second >&2; exit 7", 7), "first\nsecond\n");
    EXPECT_EQ(heardOf("exec 2>&-; sleep 0.05"), "");
    EXPECT_EQ(heardOf("head -c 1000000 /dev/zero >&2").size(), 1'000'000U) << "more than a pipe holds";
}

TEST(ChildProcess, IsHeardNoLongerThanItRuns) {
    EXPECT_EQ(heardOf("(sleep 100000; echo late >&2) & echo early >&2"), "early\n");
}

TEST(ChildProcess, IsAwaitedWhileItIsWatched) {
    int looks = 0;
    const ChildLimits limits{.watch = [&]() -> std::optional<std::chrono::milliseconds> {
        ++looks;
        return std::chrono::milliseconds(1);
    }};
    EXPECT_EQ(shellStatus("sleep 0.1; exit 7", limits), 7);
    EXPECT_GT(looks, 1);
}

TEST(ChildProcess, IsKilledWithAllItStartedWhenItsWatchSaysSo) {
    Pipe pipe;
    const FileDescriptor& written = pipe.reading;
    const ChildLimits limits{.watch = [&]() -> std::optional<std::chrono::milliseconds> {
        pollfd ready{written.get(), POLLIN, 0};
        const bool mayGoOn = ::poll(&ready, 1, 0) == 0;
        return mayGoOn ? std::optional(std::chrono::milliseconds(1)) : std::nullopt;
    }};
    EXPECT_EQ(runChild("/bin/sh", {"-c", "(echo; sleep 1000) & sleep 1000"}, pipe.writing.get(), limits),
              killed);
    pipe.writing = {};
    EXPECT_TRUE(pipe.awaitByte());
    EXPECT_FALSE(pipe.awaitByte()) << "the pipe ends when its last writer is gone";
}

TEST(ChildProcess, IsKilledWithAllItStartedWhenItsTimeIsOver) {
    Pipe pipe;
    const ChildLimits limits{.stop = {}, .deadline = std::chrono::milliseconds(50)};
    EXPECT_EQ(runChild("/bin/sh", {"-c", "sleep 1000 & sleep 1000"}, pipe.writing.get(), limits), killed);
    pipe.writing = {};
    EXPECT_FALSE(pipe.awaitByte()) << "the pipe ends when its last writer is gone";
}

TEST(ChildProcess, IsKilledWithAllItStartedAtARequestToStop) {
    Pipe pipe;
    std::stop_source stop;
    std::optional<int> status;
    std::thread runner([&] {
        status = runChild("/bin/sh", {"-c", "(echo; sleep 1000) & sleep 1000"}, pipe.writing.get(),
                          {.stop = stop.get_token(), .deadline = {}});
    });
    EXPECT_TRUE(pipe.awaitByte()) << "the grandchild is running";
    stop.request_stop();
    runner.join();
    EXPECT_EQ(status, killed);
    pipe.writing = {};
    EXPECT_FALSE(pipe.awaitByte()) << "the pipe ends when its last writer is gone";
}

TEST(ChildProcess, LeavesNothingRunning) {
    Pipe pipe;
    EXPECT_EQ(runChild("/bin/sh", {"-c", "sleep 100000 & exit 0"}, pipe.writing.get()), 0);
    pipe.writing = {};
    EXPECT_FALSE(pipe.awaitByte()) << "the pipe ends when its last writer is gone";
}

TEST(ChildProcess, IsNotStartedAfterARequestToStop) {
    std::stop_source stop;
    stop.request_stop();
    const fs::path trace = freshFolder() / "trace";
    EXPECT_EQ(runChild("/usr/bin/touch", {trace}, -1, {.stop = stop.get_token(), .deadline = {}}),
              std::nullopt);
    EXPECT_FALSE(fs::exists(trace));
}

TEST(ChildProcess, LeavesNoZombieAndNoDescriptor) {
    const auto openDescriptors = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = openDescriptors();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(shellStatus("exit 1", {.stop = {}, .deadline = std::chrono::hours(1)}), 1);
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(ChildProcess, RunsBesideOthers) {
    std::vector<std::thread> threads;
    std::array<std::optional<int>, 8> results{};
    for (std::size_t i = 0; i < results.size(); ++i) {
        threads.emplace_back([&results, i] { results.at(i) = shellStatus("exit " + std::to_string(i)); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(results, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
}

} // namespace

} // namespace velmora
