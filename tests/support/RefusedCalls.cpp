#include "tests/support/RefusedCalls.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace velmora::test {

namespace {

using Filter = std::vector<sock_filter>;

constexpr sock_filter load(std::size_t offset) {
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<__u32>(offset));
}

/// Skips the next `count` instructions unless the loaded value is `value`.
constexpr sock_filter unlessEqual(long value, __u8 count) {
    return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(value), 0, count);
}

constexpr sock_filter unlessSet(__u32 bits, __u8 count) {
    return BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, bits, 0, count);
}

constexpr sock_filter fail(__u32 error) {
    return BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error);
}

constexpr std::size_t number = offsetof(seccomp_data, nr);
constexpr std::size_t firstArgument = offsetof(seccomp_data, args);

void install(Filter filter) {
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
        std::abort();
    }
}

} // namespace

/// clone3 has its flags where a filter cannot read them. Without it the C library calls clone.
void refuseThreads() {
    install({load(number), unlessEqual(SYS_clone3, 1), fail(ENOSYS), unlessEqual(SYS_clone, 3),
             load(firstArgument), unlessSet(CLONE_THREAD, 1), fail(EAGAIN)});
}

void refuseLocks() {
    install({load(number), unlessEqual(SYS_flock, 1), fail(ENOLCK)});
}

void refuseListing() {
    install({load(number), unlessEqual(SYS_getdents64, 1), fail(EIO)});
}

void refuseMountAttributes() {
    install({load(number), unlessEqual(SYS_mount_setattr, 1), fail(ENOSYS)});
}

void refuseLandlock() {
    install({load(number), unlessEqual(SYS_landlock_create_ruleset, 1), fail(ENOSYS)});
}

void refusePidNamespaces() {
    install({load(number), unlessEqual(SYS_unshare, 3), load(firstArgument), unlessSet(CLONE_NEWPID, 1),
             fail(EPERM)});
}

void refuseCallFilters() {
    install({load(number), unlessEqual(SYS_prctl, 3), load(firstArgument), unlessEqual(PR_GET_SECCOMP, 1),
             fail(EINVAL)});
}

} // namespace velmora::test
