#include "confine/CallFilter.h"

#include <fcntl.h>
#include <linux/sockios.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <memory>

namespace velmora {

namespace {

constexpr auto refusedCalls = {
    // the network, and other programs on this machine
    SCMP_SYS(socket),
    SCMP_SYS(socketpair),
    SCMP_SYS(connect),
    SCMP_SYS(bind),
    SCMP_SYS(listen),
    SCMP_SYS(accept),
    SCMP_SYS(accept4),
    SCMP_SYS(mq_open),
    SCMP_SYS(mq_unlink),
    // memory, messages and locks that all programs of a user share
    SCMP_SYS(shmget),
    SCMP_SYS(shmat),
    SCMP_SYS(shmctl),
    SCMP_SYS(msgget),
    SCMP_SYS(msgsnd),
    SCMP_SYS(msgrcv),
    SCMP_SYS(msgctl),
    SCMP_SYS(semget),
    SCMP_SYS(semop),
    SCMP_SYS(semtimedop),
    SCMP_SYS(semctl),
    // other processes
    SCMP_SYS(ptrace),
    SCMP_SYS(process_vm_readv),
    SCMP_SYS(process_vm_writev),
    SCMP_SYS(process_madvise),
    SCMP_SYS(process_mrelease),
    SCMP_SYS(move_pages),
    SCMP_SYS(migrate_pages),
    SCMP_SYS(setpriority),
    SCMP_SYS(ioprio_set),
    SCMP_SYS(kcmp),
    SCMP_SYS(pidfd_open),
    SCMP_SYS(pidfd_getfd),
    SCMP_SYS(pidfd_send_signal),
    SCMP_SYS(tkill),
    SCMP_SYS(rt_sigqueueinfo),
    SCMP_SYS(rt_tgsigqueueinfo),
    SCMP_SYS(setpgid),
    SCMP_SYS(setsid),
    // mounts and namespaces
    SCMP_SYS(mount),
    SCMP_SYS(umount2),
    SCMP_SYS(move_mount),
    SCMP_SYS(open_tree),
    SCMP_SYS(fsopen),
    SCMP_SYS(fsconfig),
    SCMP_SYS(fsmount),
    SCMP_SYS(fspick),
    SCMP_SYS(mount_setattr),
    SCMP_SYS(pivot_root),
    SCMP_SYS(chroot),
    SCMP_SYS(unshare),
    SCMP_SYS(setns),
    SCMP_SYS(open_by_handle_at),
    // the tool's own limits
    SCMP_SYS(setrlimit),
    // the kernel
    SCMP_SYS(iopl),
    SCMP_SYS(ioperm),
    SCMP_SYS(fanotify_init),
    SCMP_SYS(bpf),
    SCMP_SYS(perf_event_open),
    SCMP_SYS(userfaultfd),
    SCMP_SYS(io_uring_setup),
    SCMP_SYS(keyctl),
    SCMP_SYS(add_key),
    SCMP_SYS(request_key),
    SCMP_SYS(init_module),
    SCMP_SYS(finit_module),
    SCMP_SYS(delete_module),
    SCMP_SYS(kexec_load),
    SCMP_SYS(kexec_file_load),
    SCMP_SYS(reboot),
    SCMP_SYS(swapon),
    SCMP_SYS(swapoff),
    SCMP_SYS(quotactl),
    SCMP_SYS(settimeofday),
    SCMP_SYS(clock_settime),
    SCMP_SYS(adjtimex),
    SCMP_SYS(clock_adjtime),
    SCMP_SYS(sethostname),
    SCMP_SYS(setdomainname),
    SCMP_SYS(syslog),
    SCMP_SYS(acct),
};

constexpr std::uint64_t namespaceFlags =
    CLONE_NEWNS | CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET | CLONE_NEWIPC | CLONE_NEWUTS | CLONE_NEWCGROUP;

/// All that the kernel looks at of an argument that is an int.
constexpr scmp_datum_t intBits = UINT32_MAX;

class Filter {
public:
    Filter()
        : m_context(::seccomp_init(SCMP_ACT_ALLOW), &::seccomp_release) {
        check(m_context ? 0 : -ENOMEM);
    }

    template <typename... Comparison>
    void refuse(int error, int call, Comparison... comparison) {
        check(::seccomp_rule_add(m_context.get(), SCMP_ACT_ERRNO(error), call, sizeof...(comparison),
                                 comparison...));
    }

    void load() { check(::seccomp_load(m_context.get())); }

private:
    static void check(int result) {
        if (result != 0) {
            throw WallError("cannot filter system calls");
        }
    }

    std::unique_ptr<void, void (*)(scmp_filter_ctx)> m_context;
};

/// Devices and sockets. A FIFO may be made: tar fails at one that it cannot make, the songs beside it would
/// be lost, and it does no harm, since what is no plain file is removed before anything is read.
void refuseNodes(Filter& filter) {
    for (const mode_t kind : {S_IFCHR, S_IFBLK, S_IFSOCK}) {
        filter.refuse(EPERM, SCMP_SYS(mknod), SCMP_A1(SCMP_CMP_MASKED_EQ, S_IFMT, kind));
        filter.refuse(EPERM, SCMP_SYS(mknodat), SCMP_A2(SCMP_CMP_MASKED_EQ, S_IFMT, kind));
    }
}

/// Signals to any process but the tool itself, also those that the kernel sends when a file is ready.
void refuseSignals(Filter& filter) {
    const auto self = static_cast<scmp_datum_t>(::getpid());
    filter.refuse(EPERM, SCMP_SYS(kill), SCMP_A0(SCMP_CMP_NE, self));
    filter.refuse(EPERM, SCMP_SYS(tgkill), SCMP_A0(SCMP_CMP_NE, self));
    for (const scmp_datum_t command : {F_SETOWN, F_SETOWN_EX, F_SETSIG}) {
        filter.refuse(EPERM, SCMP_SYS(fcntl), SCMP_A1(SCMP_CMP_MASKED_EQ, intBits, command));
    }
    for (const scmp_datum_t request : {FIOSETOWN, SIOCSPGRP}) {
        filter.refuse(EPERM, SCMP_SYS(ioctl), SCMP_A1(SCMP_CMP_MASKED_EQ, intBits, request));
    }
}

/// What would end or slow another process, or free the tool from its limits.
void refuseLimits(Filter& filter) {
    filter.refuse(EPERM, SCMP_SYS(prlimit64), SCMP_A0(SCMP_CMP_NE, 0));
    filter.refuse(EPERM, SCMP_SYS(prlimit64), SCMP_A2(SCMP_CMP_NE, 0));
    for (const int call : {SCMP_SYS(sched_setaffinity), SCMP_SYS(sched_setscheduler),
                           SCMP_SYS(sched_setparam), SCMP_SYS(sched_setattr)}) {
        filter.refuse(EPERM, call, SCMP_A0(SCMP_CMP_NE, 0));
    }
    filter.refuse(EPERM, SCMP_SYS(prctl), SCMP_A0(SCMP_CMP_MASKED_EQ, intBits, PR_SET_PDEATHSIG));
}

void refuseNamespaces(Filter& filter) {
    for (std::uint64_t flag = 1; flag <= namespaceFlags; flag <<= 1) {
        if ((namespaceFlags & flag) != 0) {
            filter.refuse(EPERM, SCMP_SYS(clone), SCMP_A0(SCMP_CMP_MASKED_EQ, flag, flag));
        }
    }
    filter.refuse(ENOSYS, SCMP_SYS(clone3)); // its flags cannot be seen here; the C library then takes clone
}

} // namespace

Layer filterCalls() {
    if (::prctl(PR_GET_SECCOMP) < 0) {
        return Layer::notOffered;
    }
    Filter filter;
    for (const int call : refusedCalls) {
        filter.refuse(EPERM, call);
    }
    refuseNodes(filter);
    refuseSignals(filter);
    refuseLimits(filter);
    refuseNamespaces(filter);
    filter.load();
    return Layer::stands;
}

} // namespace velmora
