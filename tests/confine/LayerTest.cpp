// Each layer of the wall alone, on a kernel that has no other: what it promises, it holds. Where this kernel
// does not offer it, the wall's report must say so, and then nothing is expected of it.

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

/// Calls in Python that are refused: of programs of the user's, for each of which `here` stands, and with
/// `out` to write to.
std::vector<std::string> refusedCalls(const std::string& here, const fs::path& out) {
    const auto call = [](long number) { return "call(" + std::to_string(number) + ", "; };
    const std::string node = "os.mknod('" + out.native() + "/node', ";
    return {// the network, other programs
            "socket.socket()", "socket.socket(socket.AF_UNIX)",
            "socket.socket(socket.AF_NETLINK, socket.SOCK_RAW)", "socket.socketpair()",
            // memory, messages and locks that programs share
            "call('shmget', 0, 4096, 0o1600)", "call('shmat', 0, 0, 0)", "call('shmctl', 0, 0, 0)",
            "call('msgget', 0, 0o1600)", "call('msgctl', 0, 0, 0)", "call('semget', 0, 1, 0o1600)",
            "call('semctl', 0, 0, 0)", call(SYS_mq_unlink) + "0)",
            // signals, in all their ways
            "os.kill(" + here + ", 0)", "os.kill(0, 0)", "os.kill(-1, 0)", "os.pidfd_open(" + here + ")",
            call(SYS_tkill) + here + ", 0)", call(SYS_tgkill) + here + ", " + here + ", 0)",
            call(SYS_rt_sigqueueinfo) + here + ", 0, 0)", call(SYS_rt_tgsigqueueinfo) + here + ", 0, 0, 0)",
            "fcntl.fcntl(0, fcntl.F_SETOWN, " + here + ")", "fcntl.fcntl(0, 10, 9)", // F_SETSIG
            call(SYS_fcntl) + "0, (1 << 32) + fcntl.F_SETOWN, " + here + ")", "call('ioctl', 0, 0x8901, 0)",
            "call('ioctl', 0, 0x8902, 0)", // FIOSETOWN, SIOCSPGRP
                                           // other processes: their memory, their limits, their turns
            "call('ptrace', 16, " + here + ", 0, 0)", "call('process_vm_readv', " + here + ", 0, 0, 0, 0, 0)",
            "call('process_vm_writev', " + here + ", 0, 0, 0, 0, 0)",
            call(SYS_move_pages) + "0, 0, 0, 0, 0, 0)",
            "resource.prlimit(" + here + ", resource.RLIMIT_CPU, (1, 1))",
            "os.setpriority(os.PRIO_PROCESS, " + here + ", 19)", call(SYS_ioprio_set) + "1, " + here + ", 0)",
            "os.sched_setaffinity(" + here + ", {0})",
            "os.sched_setscheduler(" + here + ", os.SCHED_BATCH, os.sched_param(0))",
            // its own wall
            call(SYS_prlimit64) + "0, 1, 1, 0)", "os.setsid()", "os.setpgid(0, 0)",
            call(SYS_setrlimit) + "0, 0)", call(SYS_prctl) + "1, 0, 0, 0, 0)", // PR_SET_PDEATHSIG
            call(SYS_prctl) + "(1 << 32) + 1, 0, 0, 0, 0)",
            // mounts, namespaces, the kernel
            "call('mount', 0, 0, 0, 0, 0)", "call('umount2', 0, 0)", "call('unshare', 0x10000000)",
            "call('setns', 0, 0)", "call('chroot', 0)", call(SYS_mount_setattr) + "0, 0, 0, 0, 0)",
            call(SYS_io_uring_setup) + "1, 0)", call(SYS_bpf) + "0, 0, 0)",
            call(SYS_perf_event_open) + "0, 0, 0, 0, 0)", call(SYS_keyctl) + "0, 0, 0, 0, 0)",
            "call('fanotify_init', 0, 0)", call(SYS_init_module) + "0, 0, 0)",
            // devices and sockets
            node + "0o140600)", node + "0o020600, os.makedev(1, 5))", node + "0o060600, os.makedev(7, 0))"};
}

TEST_F(OneLayer, OfCallsRefusesWhatReachesOut) {
    alone("seccomp", [this] {
        const bool holds = offers("seccomp");
        const std::vector<std::string> calls = refusedCalls(self, out);
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
