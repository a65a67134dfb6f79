// A tool that was taken over tries to get out: each test lets a hostile script try, and looks at what became
// of it. A layer that this kernel does not offer must say so, and then nothing is expected of it.

#include "tests/confine/Wall.h"
#include "tests/support/ForkedProcess.h"
#include "tests/support/OtherPrograms.h"

#include <gmock/gmock.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace velmora::test {

namespace {

using testing::HasSubstr;

bool hasMounts() {
    return offers("read-only mounts");
}

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
    EXPECT_THAT(report, HasSubstr("own processes: "));
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
        EXPECT_THAT(namesIn(home), testing::ElementsAre("private.txt"));
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
    EXPECT_THAT(namesIn(out), testing::IsEmpty());
}

TEST_F(Wall, MakesFifosInItsDirectoryAlone) {
    EXPECT_EQ(status("mkfifo " + word(out / "node")), 0);
    EXPECT_NE(status("mkfifo " + word(secret.parent_path() / "node")), 0);
    EXPECT_FALSE(fs::exists(secret.parent_path() / "node"));
}

TEST_F(Wall, EndsItself) {
    EXPECT_EQ(status("kill -TERM $$"), 128 + SIGTERM);
    EXPECT_EQ(status("kill -KILL $$"), 128 + SIGKILL);
    EXPECT_EQ(status("exec /usr/bin/python3 -I -c 'import os; os.abort()'"), 128 + SIGABRT);
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
    EXPECT_EQ(output("ulimit -H -c"), "0\n"); // in blocks of 512 bytes: 1 byte
    EXPECT_NE(status("ulimit -f unlimited"), 0) << "what was lowered stays";
    EXPECT_NE(status("ulimit -c unlimited"), 0);
    rules.processorSeconds = 1;
    const std::optional<int> spinning = status("while :; do :; done");
    EXPECT_TRUE(spinning == 128 + SIGXCPU || spinning == 128 + SIGKILL);
}

TEST_F(Wall, DiesWithWhoStartedIt) {
    EXPECT_TRUE(endsWithItsParent("exec sleep 100000"));
}

TEST_F(Wall, TakesWhatItStartedWithIt) {
    if (offers("own processes")) {
        EXPECT_TRUE(endsWithItsParent("sleep 100000 & wait"));
        EXPECT_TRUE(endsWithItsParent("env -i /bin/sh -c 'sleep 100000 & sleep 100000' & exec sleep 100000"));
    }
    EXPECT_EQ(status("sleep 100000 & exit 7"), 7) << "nobody waits for the sleeper";
}

TEST_F(Wall, NamesNoProcessButItsOwn) {
    if (offers("own processes")) {
        EXPECT_EQ(python("os.getpriority(os.PRIO_PROCESS, " + std::to_string(::getpid()) + ")"), "ESRCH");
    }
}

TEST_F(Wall, HasNobodyBehindItOnceItsToolWasKilled) {
    for (int i = 0; i < 20; ++i) {
        const ChildLimits limits{.deadline = std::chrono::milliseconds(30)};
        runConfined("/bin/sh", {"-c", "cat /dev/zero > " + word(out / "file") + " & sleep 1000 & wait"}, -1,
                    {.writable = out, .fileBytes = 10'000'000}, limits);
        EXPECT_THAT(programsWorkingIn(fs::temp_directory_path().native()), testing::IsEmpty());
    }
}

TEST_F(Wall, StandsForAnOrdinaryUser) {
    asOrdinaryUser([] {
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
    const ShellResult result = tryShell("VELMORA_WITHOUT_CONFINE=" + word(trace) + " " + word(copy) +
                                        " --gtest_filter=Wall.StartsNothingWithoutItsProgram");
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_FALSE(fs::exists(trace));
}

} // namespace

} // namespace velmora::test
