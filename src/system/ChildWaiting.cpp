#include "system/ChildWaiting.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>

namespace velmora {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

bool hasEnded(pid_t child) {
    siginfo_t info{};
    const int result = ::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT | WNOHANG);
    return result == 0 ? info.si_pid == child : errno != EINTR;
}

/// How long the child may run before anything must be looked at again, at most `longest`; absent when it must
/// end now.
std::optional<milliseconds> nextPause(const ChildLimits& limits, Clock::time_point start,
                                      milliseconds longest) {
    if (limits.deadline) {
        const auto left = std::chrono::ceil<milliseconds>(start + *limits.deadline - Clock::now());
        if (left.count() <= 0) {
            return std::nullopt;
        }
        longest = std::min(longest, left);
    }
    if (!limits.watch) {
        return longest;
    }
    const std::optional<milliseconds> next = limits.watch();
    return next ? std::optional(std::min(longest, *next)) : std::nullopt;
}

} // namespace

ErrorPipe::ErrorPipe(const std::function<void(std::string_view text)>& hear)
    : m_hear(hear) {
    std::array<int, 2> ends = {-1, -1};
    if (m_hear && ::pipe2(ends.data(), O_CLOEXEC) == 0) {
        m_reading = FileDescriptor(ends[0]);
        m_writing = FileDescriptor(ends[1]);
        ::fcntl(m_reading.get(), F_SETFL, O_NONBLOCK);
    }
}

void ErrorPipe::drain() {
    std::array<char, 4096> buffer{};
    while (m_reading) {
        const ssize_t got = ::read(m_reading.get(), buffer.data(), buffer.size());
        if (got > 0) {
            m_hear({buffer.data(), static_cast<std::size_t>(got)});
        } else if (got < 0 && errno == EAGAIN) {
            return; // for now
        } else if (got == 0 || errno != EINTR) {
            m_reading = FileDescriptor();
        }
    }
}

void awaitEnd(pid_t child, const ChildLimits& limits, ErrorPipe& errors) {
    const std::stop_callback killAtStop(limits.stop, [child] { ::kill(-child, SIGKILL); });
    const FileDescriptor handle(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
    // Where the kernel cannot tell of the end, it is asked often. An hour in milliseconds fits an int.
    const milliseconds longest = handle ? std::chrono::hours(1) : milliseconds(10);
    const Clock::time_point start = Clock::now();
    while (!hasEnded(child)) {
        errors.drain();
        const std::optional<milliseconds> pause = nextPause(limits, start, longest);
        if (!pause) {
            ::kill(-child, SIGKILL);
            break;
        }
        std::array<pollfd, 2> events = {pollfd{handle.get(), POLLIN, 0}, pollfd{errors.reading(), POLLIN, 0}};
        ::poll(events.data(), events.size(), static_cast<int>(pause->count()));
    }
    errors.drain();
}

} // namespace velmora
