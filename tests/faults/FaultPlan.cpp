#include "tests/faults/FaultPlan.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace velmora::faults {

namespace {

constexpr std::size_t maxPath = 4096;
constexpr int logDescriptor = 900; ///< out of the way of those that the program counts on

using Text = std::array<char, maxPath>;

constexpr auto errors = std::to_array<std::pair<std::string_view, int>>({
    {"EACCES", EACCES},
    {"EAGAIN", EAGAIN},
    {"EBUSY", EBUSY},
    {"EINTR", EINTR},
    {"EIO", EIO},
    {"EMFILE", EMFILE},
    {"ENOLCK", ENOLCK},
    {"ENOMEM", ENOMEM},
    {"ENOSPC", ENOSPC},
    {"EROFS", EROFS},
    {"EXDEV", EXDEV},
});

enum class How { nothing, error, shortened, end, unknown, stop, kill, block };

struct Plan {
    Text text{}; // what the views below look at
    std::string_view call;
    std::string_view part;
    long number = 0;
    bool isLasting = false;
    How how = How::nothing;
    int error = 0;
    int log = -1;
};

std::atomic<bool> isReady = false;
Plan plan; ///< not changed once `isReady`

/// The calls of one kind made so far. Kinds are told apart by their names, of which there are few.
struct Counter {
    std::atomic<const char*> call = nullptr;
    std::atomic<long> made = 0;
};

std::array<Counter, 32> counters;

/// Takes the text before the next ":" off `rest`.
std::string_view field(std::string_view& rest) {
    const std::size_t end = rest.find(':');
    const std::string_view result = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return result;
}

[[noreturn]] void refuse(const char* why) {
    std::fprintf(stderr, "fault injector: VELMORA_FAULT: %s\n", why);
    std::abort();
}

void readHow(std::string_view name) {
    constexpr auto ways = std::to_array<std::pair<std::string_view, How>>({{"short", How::shortened},
                                                                           {"end", How::end},
                                                                           {"unknown", How::unknown},
                                                                           {"stop", How::stop},
                                                                           {"kill", How::kill},
                                                                           {"block", How::block}});
    for (const auto& [text, how] : ways) {
        if (text == name) {
            plan.how = how;
        }
    }
    for (const auto& [text, error] : errors) {
        if (text == name) {
            plan.how = How::error;
            plan.error = error;
        }
    }
    if (plan.how == How::nothing) {
        refuse("no such fault");
    }
}

void readPlan(const char* text) {
    std::snprintf(plan.text.data(), plan.text.size(), "%s", text);
    std::string_view rest = plan.text.data();
    plan.call = field(rest);
    const std::string_view number = field(rest);
    plan.isLasting = number.ends_with('+');
    if (std::from_chars(number.data(), number.data() + number.size(), plan.number).ec != std::errc()) {
        refuse("no number");
    }
    readHow(field(rest));
    plan.part = rest;
}

/// The descriptor of the log, opened without any of the calls that are counted.
int openLog(const char* path) {
    const long opened =
        ::syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    const long moved = ::syscall(SYS_dup3, opened, logDescriptor, O_CLOEXEC);
    ::syscall(SYS_close, opened);
    return static_cast<int>(moved);
}

[[gnu::constructor]] void readEnvironment() {
    if (const char* log = std::getenv("VELMORA_FAULT_LOG")) {
        plan.log = openLog(log);
    }
    if (const char* text = std::getenv("VELMORA_FAULT")) {
        readPlan(text);
    }
    for (const char* name : {"LD_PRELOAD", "VELMORA_FAULT", "VELMORA_FAULT_LOG"}) {
        ::unsetenv(name);
    }
    isReady = true;
}

long countOf(const char* call) {
    for (Counter& counter : counters) {
        const char* none = nullptr;
        if (counter.call.compare_exchange_strong(none, call) || std::strcmp(none, call) == 0) {
            return ++counter.made;
        }
    }
    std::abort(); // more kinds than there is room for
}

void writeLog(bool struck, const char* call, long number, const char* path) {
    std::array<char, maxPath + 64> line{};
    const int length =
        std::snprintf(line.data(), line.size(), "%s%s %ld %s\n", struck ? "! " : "", call, number, path);
    ::syscall(SYS_write, plan.log, line.data(),
              std::min<std::size_t>(static_cast<std::size_t>(length), line.size()));
}

[[noreturn]] void blockForEver() {
    sigset_t all;
    sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
    for (;;) {
        ::pause();
    }
}

Fault carryOut() {
    switch (plan.how) {
    case How::error:
        return {.error = plan.error};
    case How::shortened:
        return {.isShort = true};
    case How::end:
        return {.isEndOfFile = true};
    case How::unknown:
        return {.isUnknown = true};
    case How::stop:
        ::syscall(SYS_tgkill, ::getpid(), ::gettid(), SIGSTOP); // this thread is to go no further
        return {};
    case How::kill:
        ::kill(::getpid(), SIGKILL);
        return {};
    case How::block:
        blockForEver();
    case How::nothing:
        break;
    }
    return {};
}

} // namespace

Fault faultOf(const char* call, const char* path) noexcept {
    if (!isReady || (plan.log < 0 && plan.call != call)) {
        return {};
    }
    const int before = errno;
    const std::string_view concerned = path == nullptr ? "" : path;
    Fault fault;
    if (concerned.find(plan.part) != std::string_view::npos) {
        const long number = countOf(call);
        const bool struck =
            plan.call == call && (number == plan.number || (plan.isLasting && number > plan.number));
        if (plan.log >= 0) {
            writeLog(struck, call, number, concerned.data());
        }
        fault = struck ? carryOut() : Fault();
    }
    errno = before;
    return fault;
}

Fault faultOf(const char* call, int descriptor) noexcept {
    if (!isReady || (plan.log < 0 && plan.call != call)) {
        return {};
    }
    const int before = errno;
    std::array<char, 32> link{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", descriptor);
    Text path{};
    ::syscall(SYS_readlink, link.data(), path.data(), path.size() - 1);
    errno = before;
    if (std::string_view(path.data()).starts_with("anon_inode:")) { // an event or a signal, on no disk
        return {};
    }
    return faultOf(call, path.data());
}

Fault faultOf(const char* call) noexcept {
    return faultOf(call, "");
}

} // namespace velmora::faults
