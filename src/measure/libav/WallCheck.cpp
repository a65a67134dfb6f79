#include "measure/libav/Wall.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <new>

namespace velmora {

namespace {

/// Made before the filter stands, for what it takes to try.
struct Means {
    int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    void* page = ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    pid_t other = ::getppid();
    std::array<char*, 1> nothing{}; // no words, no environment
};

struct Attempt {
    const char* call;
    long (*tryIt)(const Means&);
};

long connectTo(const Means& means) {
    const sockaddr_un address{AF_UNIX, "/run/nobody-listens"};
    return ::connect(means.socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

constexpr auto attempts = std::to_array<Attempt>({
    {"openat", [](const Means&) { return ::syscall(SYS_openat, AT_FDCWD, "/etc/passwd", O_RDONLY); }},
    {"openat2", [](const Means&) { return ::syscall(SYS_openat2, AT_FDCWD, "/etc/passwd", nullptr, 0); }},
#ifdef SYS_open
    {"open", [](const Means&) { return ::syscall(SYS_open, "/etc/passwd", O_RDONLY); }},
#endif
    {"statx", [](const Means&) { return ::syscall(SYS_statx, AT_FDCWD, "/", 0, 0, nullptr); }},
    {"unlinkat", [](const Means&) { return ::syscall(SYS_unlinkat, AT_FDCWD, "/nothing", 0); }},
    {"socket", [](const Means&) { return ::syscall(SYS_socket, AF_INET, SOCK_STREAM, 0); }},
    {"connect", &connectTo},
    {"sendto", [](const Means& means) { return ::syscall(SYS_sendto, means.socket, "", 0, 0, nullptr, 0); }},
    {"write", [](const Means&) { return ::syscall(SYS_write, STDERR_FILENO, "", 0); }},
    {"kill", [](const Means& means) { return ::syscall(SYS_kill, means.other, 0); }},
    {"tgkill", [](const Means& means) { return ::syscall(SYS_tgkill, means.other, means.other, 0); }},
    {"ptrace", [](const Means&) { return ::syscall(SYS_ptrace, PTRACE_TRACEME, 0, 0, 0); }},
    {"mprotect", [](const Means& means) { return ::syscall(SYS_mprotect, means.page, 4096, PROT_EXEC); }},
    {"memfd_create", [](const Means&) { return ::syscall(SYS_memfd_create, "x", 0); }},
    {"io_uring_setup", [](const Means&) { return ::syscall(SYS_io_uring_setup, 1, nullptr); }},
    {"clone", [](const Means&) { return ::syscall(SYS_clone, CLONE_THREAD, 0, 0, 0, 0); }},
    {"clone3", [](const Means&) { return ::syscall(SYS_clone3, nullptr, 0); }},
    {"execveat",
     [](const Means& means) {
         return ::syscall(SYS_execveat, AT_FDCWD, "/bin/true", means.nothing.data(), means.nothing.data(), 0);
     }},
    {"execve",
     [](const Means& means) {
         return ::syscall(SYS_execve, "/bin/true", means.nothing.data(), means.nothing.data());
     }},
});

using Refusals = std::array<bool, attempts.size()>;

/// In a process of its own, which cannot even print any more.
void tryAll(Refusals& refusals) {
    const Means means;
    if (filterCalls()) {
        for (std::size_t i = 0; i < attempts.size(); ++i) {
            errno = 0;
            refusals[i] = attempts[i].tryIt(means) == -1 && errno == EPERM;
        }
    }
    ::_exit(0);
}

} // namespace

int checkFilter() {
    void* const shared =
        ::mmap(nullptr, sizeof(Refusals), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) {
        return 1;
    }
    Refusals& refusals = *new (shared) Refusals{};
    const pid_t child = ::fork();
    if (child == 0) {
        tryAll(refusals);
    }
    ::waitpid(child, nullptr, 0);
    bool areAllRefused = true;
    for (std::size_t i = 0; i < attempts.size(); ++i) {
        std::printf("%s: %s\n", attempts[i].call, refusals[i] ? "refused" : "NOT REFUSED");
        areAllRefused = areAllRefused && refusals[i];
    }
    return areAllRefused ? 0 : 1;
}

} // namespace velmora
