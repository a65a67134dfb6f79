#include "confine/OwnProcesses.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace velmora {

namespace {

[[noreturn]] void endAs(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    ::_exit(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
}

/// Goes on as a child that is killed when this process ends. This process only waits for it.
void goOnAsChild() {
    std::array<int, 2> alive{}; // hangs up when this process ends
    if (::pipe2(alive.data(), O_CLOEXEC) != 0) {
        throw WallError("cannot make a pipe");
    }
    const pid_t child = ::fork();
    if (child < 0) {
        throw WallError("cannot start a process");
    }
    if (child > 0) {
        endAs(child);
    }
    ::close(alive[1]);
    pollfd parent{alive[0], 0, 0};
    if (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::poll(&parent, 1, 0) != 0) {
        throw WallError("nobody waits for the tool");
    }
    ::close(alive[0]);
}

} // namespace

Layer enterOwnProcesses() {
    if (::unshare(CLONE_NEWPID) != 0) {
        return Layer::notOffered;
    }
    goOnAsChild(); // the first process of the namespace: when it ends, the kernel kills the others
    goOnAsChild(); // the tool, which would not get its own signals as the first
    return Layer::stands;
}

} // namespace velmora
