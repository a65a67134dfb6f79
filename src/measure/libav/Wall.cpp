#include "measure/libav/Wall.h"

#include <fcntl.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <memory>

namespace velmora {

namespace {

constexpr auto allowedCalls = {
    // memory; mmap and mprotect are allowed further down
    SCMP_SYS(brk),
    SCMP_SYS(munmap),
    SCMP_SYS(mremap),
    SCMP_SYS(madvise),
    // what is open already
    SCMP_SYS(pread64),
    SCMP_SYS(recvmsg),
    SCMP_SYS(sendmsg),
    SCMP_SYS(close),
    // time, threads' locks, signals to itself
    SCMP_SYS(clock_gettime),
    SCMP_SYS(gettimeofday),
    SCMP_SYS(futex),
    SCMP_SYS(restart_syscall),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(getpid),
    SCMP_SYS(gettid),
    SCMP_SYS(exit_group),
};

constexpr auto allowedUnlessExecutable = {SCMP_SYS(mmap), SCMP_SYS(mprotect)}; // their third argument says

/// Address space that may stay in use after a file.
constexpr std::int64_t maxKept = 16'000'000;

bool limit(__rlimit_resource resource, rlim_t value) {
    const rlimit both{value, value};
    return ::setrlimit(resource, &both) == 0;
}

} // namespace

MemoryLimit::MemoryLimit()
    : m_sizes(::open("/proc/self/statm", O_RDONLY | O_CLOEXEC))
    , m_start(size()) {
    // A core limit of 0 would still hand the dump to a program that the kernel is told to start.
    m_stands =
        m_start > 0 && limit(RLIMIT_CORE, 1) && limit(RLIMIT_AS, static_cast<rlim_t>(m_start + maxGrowth));
}

bool MemoryLimit::isUsed() const {
    return size() > m_start + maxKept;
}

std::int64_t MemoryLimit::size() const {
    std::array<char, 32> text{};
    std::int64_t pages = 0;
    const ssize_t got = ::pread(m_sizes.get(), text.data(), text.size(), 0);
    std::from_chars(text.data(), text.data() + (got > 0 ? got : 0), pages);
    return pages * ::sysconf(_SC_PAGESIZE);
}

bool filterCalls() {
    const std::unique_ptr<void, void (*)(scmp_filter_ctx)> filter(::seccomp_init(SCMP_ACT_ERRNO(EPERM)),
                                                                  &::seccomp_release);
    bool isGood = filter != nullptr;
    for (const int call : allowedCalls) {
        isGood = isGood && ::seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, 0) == 0;
    }
    for (const int call : allowedUnlessExecutable) {
        isGood = isGood && ::seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, 1,
                                              SCMP_A2(SCMP_CMP_MASKED_EQ, PROT_EXEC, 0)) == 0;
    }
    const auto self = static_cast<scmp_datum_t>(::getpid());
    isGood = isGood && ::seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, SCMP_SYS(tgkill), 1,
                                          SCMP_A0(SCMP_CMP_EQ, self)) == 0;
    return isGood && ::seccomp_load(filter.get()) == 0;
}

} // namespace velmora
