// A tool that was taken over tries to get out: each test lets a hostile script try, and looks at what became
// of it. A layer that this kernel does not offer must say so, and then nothing is expected of it.

#include "confine/ConfinedChild.h"

#include "system/FileDescriptor.h"
#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"
#include "tests/support/Shell.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/landlock.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace velmora {

namespace {

using test::freshFolder;
using test::read;
using test::shellWord;
using test::write;
using testing::HasSubstr;
namespace fs = std::filesystem;

/// Whether the kernel itself says that it has Landlock of a version that is used.
bool hasLandlock() {
    return ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) >= 2;
}

bool hasMounts() {
    return wallReport().find("read-only mounts: stands") != std::string::npos;
}

class Wall : public testing::Test {
protected:
    fs::path home = freshFolder();
    fs::path secret = write(home / "private.txt", "secret");
    fs::path out = freshFolder();
    Rules rules{.writable = out};

    /// The exit status of `script`, run by the shell behind the wall.
    std::optional<int> status(const std::string& script) const {
        return runConfined("/bin/sh", {"-c", script}, -1, rules);
    }

    /// What `script` writes to its standard output.
    std::string output(const std::string& script) const {
        const FileDescriptor file(::memfd_create("output", MFD_CLOEXEC));
        runConfined("/bin/sh", {"-c", script + " 2>&1"}, file.get(), rules);
        return read("/proc/self/fd/" + std::to_string(file.get()));
    }

    /// The same of a Python script, which can make any system call. Prints the error's name, or what it
    /// returned.
    std::string python(const std::string& script) const {
        const fs::path program = write(out / "script.py", "import ctypes, os, errno, socket, signal\n"
                                                          "try:\n    print(" +
                                                              script +
                                                              ")\nexcept OSError as error:\n"
                                                              "    print(errno.errorcode[error.errno])\n");
        return output("/usr/bin/python3 -B -I " + program.native());
    }

    std::string word(const fs::path& path) const { return shellWord(path.native()); }
};

TEST_F(Wall, LetsAToolDoItsWork) {
    rules.readable = secret;
    EXPECT_EQ(status("cat " + word(secret) + " > " + word(out / "copy") + " && mkdir " + word(out / "d") +
                     " && ln " + word(out / "copy") + " " + word(out / "d/hard") + " && ln -s copy " +
                     word(out / "link") + " && mv " + word(out / "copy") + " " + word(out / "d/moved") +
                     " && chmod 600 " + word(out / "d/moved") + " && touch -d 2001-01-01 " +
                     word(out / "d/moved")),
              0);
    EXPECT_EQ(read(out / "d/moved"), "secret");
    EXPECT_EQ(status("exit 7"), 7);
}

TEST_F(Wall, SaysWhichLayersThereAre) {
    const std::string report = wallReport();
    EXPECT_THAT(report, HasSubstr(hasLandlock() ? "Landlock: stands" : "Landlock: not offered here"));
    const bool hasSeccomp = ::prctl(PR_GET_SECCOMP) >= 0;
    EXPECT_THAT(report, HasSubstr(hasSeccomp ? "seccomp: stands" : "seccomp: not offered here"));
    EXPECT_THAT(report, HasSubstr("read-only mounts: "));
    EXPECT_THAT(report, HasSubstr("limits: stand"));
}

TEST_F(Wall, KeepsTheUsersFilesFromBeingRead) {
    ASSERT_EQ(status("cat " + word(secret)) == 0, !hasLandlock());
    EXPECT_EQ(status("ls " + word(home)) == 0, !hasLandlock());
    EXPECT_EQ(status("cat /etc/shadow") == 0, !hasLandlock() && ::geteuid() == 0);
    rules.readable = secret;
    EXPECT_EQ(status("cat " + word(secret)), 0);
}

TEST_F(Wall, KeepsEverythingOutsideFromBeingWritten) {
    const bool holds = hasLandlock() || hasMounts();
    rules.readable = secret;
    for (const std::string& attempt :
         {"echo x > " + word(home / "new"), "echo x >> " + word(secret), "rm " + word(secret),
          "mkdir " + word(home / "folder"), "ln -s x " + word(home / "link"),
          "ln " + word(secret) + " " + word(home / "hard"), "truncate -s 0 " + word(secret),
          "mv " + word(secret) + " " + word(home / "moved")}) {
        EXPECT_EQ(status(attempt) == 0, !holds) << attempt;
    }
    if (holds) {
        EXPECT_EQ(read(secret), "secret");
        EXPECT_THAT(test::namesIn(home), testing::ElementsAre("private.txt"));
    }
}

TEST_F(Wall, KeepsWhatIsOutsideFromLinksOfItsOwn) {
    ASSERT_EQ(status("ln -s " + word(home) + " " + word(out / "link")), 0);
    const bool holds = hasLandlock() || hasMounts();
    EXPECT_EQ(status("echo x > " + word(out / "link/new")) == 0, !holds);
    EXPECT_EQ(status("ln " + word(secret) + " " + word(out / "hard")) == 0, !holds);
}

TEST_F(Wall, KeepsPermissionsAndTimesOutside) {
    const bool holds = hasMounts();
    const auto time = fs::last_write_time(secret);
    EXPECT_EQ(status("chmod 777 " + word(secret)) == 0, !holds);
    EXPECT_EQ(status("touch -d 2001-01-01 " + word(secret)) == 0, !holds);
    if (holds) {
        EXPECT_NE(fs::status(secret).permissions(), fs::perms(0777));
        EXPECT_EQ(fs::last_write_time(secret), time);
    }
}

TEST_F(Wall, MakesNoDevices) {
    for (const std::string node : {"c 1 5", "b 7 0"}) {
        EXPECT_NE(status("mknod " + word(out / "node") + " " + node), 0) << node;
    }
    EXPECT_THAT(test::namesIn(out), testing::IsEmpty());
}

TEST_F(Wall, MakesFifosInItsDirectoryAlone) {
    EXPECT_EQ(status("mkfifo " + word(out / "node")), 0);
    EXPECT_NE(status("mkfifo " + word(secret.parent_path() / "node")), 0);
    EXPECT_FALSE(fs::exists(secret.parent_path() / "node"));
}

TEST_F(Wall, ReachesNoNetwork) {
    for (const char* family : {"AF_INET", "AF_INET6", "AF_UNIX", "AF_NETLINK"}) {
        EXPECT_EQ(python(std::string("socket.socket(socket.") + family + ", socket.SOCK_DGRAM)"), "EPERM\n")
            << family;
    }
    EXPECT_EQ(python("socket.socketpair()"), "EPERM\n");
}

TEST_F(Wall, ReachesNoOtherProcess) {
    const std::string own = std::to_string(::getpid());
    for (const std::string& attempt : std::vector<std::string>{
             "os.kill(" + own + ", 0)", "os.kill(-1, 0)", "os.kill(1, 0)", "os.pidfd_open(" + own + ")"}) {
        EXPECT_EQ(python(attempt), "EPERM\n") << attempt;
    }
    for (const std::string& call :
         {std::to_string(SYS_ptrace) + ", 16, " + own, std::to_string(SYS_unshare) + ", 0x10000000",
          std::to_string(SYS_mount) + ", 0, 0, 0, 0", std::to_string(SYS_io_uring_setup) + ", 1, 0",
          std::to_string(SYS_setns) + ", 0, 0"}) {
        EXPECT_EQ(python("(ctypes.CDLL(None, use_errno=True).syscall(" + call +
                         "), errno.errorcode[ctypes.get_errno()])[1]"),
                  "EPERM\n")
            << call;
    }
    EXPECT_EQ(status("kill -TERM $$"), 128 + SIGTERM) << "itself it may end";
}

TEST_F(Wall, GivesNoNewPrivileges) {
    EXPECT_THAT(output("cat /usr/bin/env > /dev/null; /usr/bin/python3 -I -c 'import ctypes; "
                       "print(ctypes.CDLL(None).prctl(39, 0, 0, 0, 0))'"),
                HasSubstr("1")); // PR_GET_NO_NEW_PRIVS
}

TEST_F(Wall, HoldsATooltoItsLimits) {
    rules.fileBytes = 100'000;
    rules.memoryBytes = 200'000'000;
    EXPECT_EQ(status("head -c 100000 /usr/bin/python3 > " + word(out / "fits")), 0);
    EXPECT_NE(status("head -c 100001 /usr/bin/python3 > " + word(out / "large")), 0);
    EXPECT_EQ(fs::file_size(out / "large"), 100'000U);
    EXPECT_THAT(output("/usr/bin/python3 -I -c 'bytearray(10**9)'"), HasSubstr("MemoryError"));
    EXPECT_EQ(output("ulimit -c"), "0\n"); // in blocks of 512 bytes: 1 byte
    rules.processorSeconds = 1;
    const std::optional<int> spinning = status("while :; do :; done");
    EXPECT_TRUE(spinning == 128 + SIGXCPU || spinning == 128 + SIGKILL);
}

TEST_F(Wall, DiesWithWhoStartedIt) {
    // A process starts a tool that keeps a pipe open for ever; the process is killed, and the pipe ends.
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const pid_t parent = ::fork();
    if (parent == 0) {
        runConfined("/bin/sh", {"-c", "echo; exec sleep 100000"}, ends[1], rules);
        ::_exit(0);
    }
    ::close(ends[1]);
    char byte = 0;
    EXPECT_EQ(::read(ends[0], &byte, 1), 1) << "the tool runs";
    ::kill(parent, SIGKILL);
    ::waitpid(parent, nullptr, 0);
    EXPECT_EQ(::read(ends[0], &byte, 1), 0) << "nobody writes any more";
    ::close(ends[0]);
}

TEST_F(Wall, StandsForAnOrdinaryUser) {
    test::asOrdinaryUser([] {
        const fs::path mine = write(freshFolder() / "private.txt", "secret");
        const fs::path folder = freshFolder();
        const Rules theirs{.writable = folder};
        EXPECT_EQ(
            runConfined("/bin/sh", {"-c", "echo x > " + shellWord((folder / "new").native())}, -1, theirs),
            0);
        const std::optional<int> written =
            runConfined("/bin/sh", {"-c", "echo x > " + shellWord(mine.native())}, -1, theirs);
        EXPECT_EQ(written == 0, !hasLandlock() && !hasMounts());
        const std::optional<int> opened =
            runConfined("/bin/sh", {"-c", "chmod 777 " + shellWord(mine.native())}, -1, theirs);
        EXPECT_EQ(opened == 0, !hasMounts());
    });
}

TEST_F(Wall, StartsNothingThatIsNotThere) {
    EXPECT_EQ(runConfined(home / "missing", {}, -1, rules), std::nullopt);
    EXPECT_EQ(runConfined(secret, {}, -1, rules), std::nullopt);
}

TEST_F(Wall, StartsNothingWithoutItsProgram) {
    // This very test again, from where no velmora-confine is.
    const fs::path copy = home / "bin" / "here" / "test";
    fs::create_directories(copy.parent_path());
    fs::copy_file("/proc/self/exe", copy);
    const fs::path trace = home / "trace";
    if (const char* place = std::getenv("VELMORA_WITHOUT_CONFINE")) {
        EXPECT_EQ(confineProgram(), std::nullopt);
        EXPECT_EQ(runConfined("/usr/bin/touch", {place}, -1, {}), std::nullopt);
        EXPECT_EQ(wallReport(), "");
        return;
    }
    ASSERT_TRUE(confineProgram());
    const test::ShellResult result =
        test::tryShell("VELMORA_WITHOUT_CONFINE=" + word(trace) + " " + word(copy) +
                       " --gtest_filter=Wall.StartsNothingWithoutItsProgram");
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_FALSE(fs::exists(trace));
}

} // namespace

} // namespace velmora
