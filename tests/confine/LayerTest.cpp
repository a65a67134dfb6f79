// Each layer of the wall alone, on a kernel that has no other: what it promises, it holds. Where this kernel
// does not offer it, the wall's report must say so, and then nothing is expected of it.

#include "tests/confine/ForbiddenCalls.h"
#include "tests/confine/Wall.h"
#include "tests/support/ForkedProcess.h"
#include "tests/support/NamedRow.h"
#include "tests/support/RefusedCalls.h"
#include "tests/support/Snapshot.h"

#include <gmock/gmock.h>
#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>

namespace velmora::test {
namespace {

using testing::HasSubstr;

struct Layer : NamedRow {
    std::string word; ///< in the report
    void (*takeOut)();
};

const std::vector<Layer> layers = {{{"Mounts"}, "read-only mounts", &refuseMountAttributes},
                                   {{"Processes"}, "own processes", &refusePidNamespaces},
                                   {{"Files"}, "Landlock", &refuseLandlock},
                                   {{"Calls"}, "seccomp", &refuseCallFilters}}; // last: see RefusedCalls.h

class LayerReport : public Wall, public testing::WithParamInterface<Layer> {};

TEST_P(LayerReport, NamesTheLayerThatAKernelLacks) {
    const std::string before = wallReport();
    inProcess([&] {
        GetParam().takeOut();
        EXPECT_THAT(wallReport(), HasSubstr(GetParam().word + ": not offered here"));
        EXPECT_EQ(status("exit 7"), 7) << "tools run all the same";
        EXPECT_EQ(status("echo x > " + word(out / "new")), 0);
    });
    EXPECT_EQ(wallReport(), before);
}

INSTANTIATE_TEST_SUITE_P(Rows, LayerReport, testing::ValuesIn(layers), &rowName<Layer>);

class OneLayer : public Wall {
protected:
    /// Runs `body` where there is at most the layer of that word.
    static void alone(const std::string& word, const Body& body) {
        inProcess([&] {
            for (const Layer& layer : layers) {
                if (layer.word != word) {
                    layer.takeOut();
                }
            }
            body();
        });
    }

    /// Whether a script changes anything in a user's folder, where it is started, in which there is a file
    /// `private.txt` and a folder `folder`.
    bool changes(const std::string& script) const {
        const fs::path place = freshFolder();
        write(place / "private.txt", "secret");
        fs::create_directory(place / "folder");
        const Snapshot before = snapshotOf(place);
        status("cd " + word(place) + " && " + script);
        return snapshotOf(place) != before;
    }

    const std::string self = std::to_string(::getpid());
};

const std::vector<std::string> changesOfContent = {"echo x > new",
                                                   "echo x > private.txt",
                                                   "echo x >> private.txt",
                                                   "rm private.txt",
                                                   "rmdir folder",
                                                   "mv private.txt moved",
                                                   "ln private.txt hard",
                                                   "ln -s private.txt link",
                                                   "mkdir new",
                                                   "mkfifo new",
                                                   "mknod new c 1 5",
                                                   "truncate -s 0 private.txt",
                                                   "mv folder another",
                                                   "mv private.txt folder/",
                                                   "cp /bin/true new",
                                                   "ln -f /bin/true private.txt",
                                                   "rm -rf folder",
                                                   "dd if=/bin/true of=private.txt",
                                                   "touch new"};

const std::vector<std::string> changesOfTheRest = {"chmod 777 private.txt", "touch -d 2001-01-01 private.txt",
                                                   "chmod 700 folder", "chown $(id -u) private.txt"};

TEST_F(OneLayer, OfMountsKeepsEverythingOutsideAsItIs) {
    alone("read-only mounts", [this] {
        const bool holds = offers("read-only mounts");
        for (const auto* list : {&changesOfContent, &changesOfTheRest}) {
            for (const std::string& script : *list) {
                EXPECT_TRUE(!changes(script) || !holds) << script;
            }
        }
        EXPECT_TRUE(changes("echo x > " + word(out / "new") + " && cat " + word(out / "new") +
                            " > private.txt") != holds)
            << "a script does change what it may";
        EXPECT_EQ(read(out / "new"), "x\n");
    });
}

TEST_F(OneLayer, OfFilesKeepsContentOutsideFromChange) {
    alone("Landlock", [this] {
        const bool holds = hasLandlock();
        for (const std::string& script : changesOfContent) {
            EXPECT_TRUE(!changes(script) || !holds) << script;
        }
        EXPECT_TRUE(changes("echo x > " + word(out / "new") + " && cat " + word(out / "new") +
                            " > private.txt") != holds);
        EXPECT_EQ(read(out / "new"), "x\n");
    });
}

TEST_F(OneLayer, OfFilesKeepsTheUsersFilesFromBeingRead) {
    alone("Landlock", [this] {
        const bool holds = hasLandlock();
        for (const std::string& place : {word(secret), word("/proc/" + self + "/environ"), word("/dev/zero"),
                                         word("/etc/hostname"), word("/proc/self/status")}) {
            EXPECT_EQ(status("head -c 1 " + place) == 0, !holds) << place;
        }
        EXPECT_EQ(status("ls " + word(home)) == 0, !holds);
        EXPECT_EQ(status("ls " + word("/proc")) == 0, !holds);
        rules.readable = secret;
        EXPECT_EQ(status("head -c 1 " + word(secret)), 0);
    });
}

TEST_F(OneLayer, OfFilesReachesNoServiceAndNoProcess) {
    alone("Landlock", [this] {
        const long version =
            ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
        if (version >= 4) {
            EXPECT_EQ(python("socket.create_connection(('127.0.0.1', 9))"), "EACCES");
            EXPECT_EQ(python("socket.create_server(('127.0.0.1', 0))"), "EACCES");
        }
        if (version >= 6) {
            EXPECT_EQ(python("os.kill(" + self + ", 0)"), "EPERM");
        }
    });
}

TEST_F(OneLayer, OfCallsRefusesWhatReachesOut) {
    alone("seccomp", [this] {
        const bool holds = offers("seccomp");
        const std::vector<std::string> calls = forbiddenCalls(self, out);
        const std::vector<std::string> answers = python(calls);
        for (std::size_t i = 0; i < calls.size(); ++i) {
            EXPECT_EQ(answers[i] == "EPERM", holds) << calls[i] << ": " << answers[i];
        }
        EXPECT_EQ(status("kill -TERM $$"), 128 + SIGTERM) << "itself it may end";
    });
}

TEST_F(OneLayer, OfProcessesNamesAndLeavesNoOther) {
    alone("own processes", [this] {
        if (offers("own processes")) {
            EXPECT_EQ(python("os.kill(" + self + ", 0)"), "ESRCH");
            EXPECT_EQ(python("os.pidfd_open(" + self + ")"), "ESRCH");
            EXPECT_TRUE(endsWithItsParent("sleep 100000 & wait"));
            EXPECT_TRUE(endsWithItsParent("setsid env -i sleep 100000 & exec sleep 100000"));
        }
    });
}

TEST_F(OneLayer, OfLimitsStandsWhereNothingElseDoes) {
    rules.fileBytes = 1000;
    alone("", [this] {
        EXPECT_THAT(wallReport(), testing::Not(HasSubstr(": stands")));
        EXPECT_NE(status("head -c 2000 /bin/sh > " + word(out / "large")), 0);
        EXPECT_EQ(fs::file_size(out / "large"), 1000U);
        EXPECT_TRUE(endsWithItsParent("exec sleep 100000"));
    });
}

} // namespace
} // namespace velmora::test
