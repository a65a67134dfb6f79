#include "tests/confine/ForbiddenCalls.h"

#include <sched.h>
#include <sys/syscall.h>

namespace velmora::test {

namespace {

using Calls = std::vector<std::string>;

/// Refused whatever their arguments.
const std::vector<long> refusedNumbers = {
#ifdef SYS_iopl
    SYS_iopl,
    SYS_ioperm,
#endif
    SYS_socket,
    SYS_socketpair,
    SYS_connect,
    SYS_bind,
    SYS_listen,
    SYS_accept,
    SYS_accept4,
    SYS_mq_open,
    SYS_mq_unlink,
    SYS_shmget,
    SYS_shmat,
    SYS_shmctl,
    SYS_msgget,
    SYS_msgsnd,
    SYS_msgrcv,
    SYS_msgctl,
    SYS_semget,
    SYS_semop,
    SYS_semtimedop,
    SYS_semctl,
    SYS_process_vm_readv,
    SYS_process_vm_writev,
    SYS_process_madvise,
    SYS_process_mrelease,
    SYS_move_pages,
    SYS_migrate_pages,
    SYS_setpriority,
    SYS_ioprio_set,
    SYS_kcmp,
    SYS_pidfd_open,
    SYS_pidfd_getfd,
    SYS_pidfd_send_signal,
    SYS_tkill,
    SYS_rt_sigqueueinfo,
    SYS_rt_tgsigqueueinfo,
    SYS_setpgid,
    SYS_setsid,
    SYS_mount,
    SYS_umount2,
    SYS_move_mount,
    SYS_open_tree,
    SYS_fsopen,
    SYS_fsconfig,
    SYS_fsmount,
    SYS_fspick,
    SYS_mount_setattr,
    SYS_pivot_root,
    SYS_chroot,
    SYS_unshare,
    SYS_setns,
    SYS_open_by_handle_at,
    SYS_setrlimit,
    SYS_fanotify_init,
    SYS_bpf,
    SYS_perf_event_open,
    SYS_userfaultfd,
    SYS_io_uring_setup,
    SYS_keyctl,
    SYS_add_key,
    SYS_request_key,
    SYS_init_module,
    SYS_finit_module,
    SYS_delete_module,
    SYS_kexec_load,
    SYS_kexec_file_load,
    SYS_reboot,
    SYS_swapon,
    SYS_swapoff,
    SYS_quotactl,
    SYS_settimeofday,
    SYS_clock_settime,
    SYS_adjtimex,
    SYS_clock_adjtime,
    SYS_sethostname,
    SYS_setdomainname,
    SYS_syslog,
    SYS_acct};

constexpr unsigned namespaces[] = {CLONE_NEWNS,  CLONE_NEWUSER, CLONE_NEWPID,   CLONE_NEWNET,
                                   CLONE_NEWIPC, CLONE_NEWUTS,  CLONE_NEWCGROUP};

/// A system call's beginning, as Python has it.
std::string call(long number) {
    return "call(" + std::to_string(number) + ", ";
}

Calls signalsTo(const std::string& other) {
    return {"os.kill(" + other + ", 0)", "os.kill(0, 0)", "os.kill(-1, 0)",
            call(SYS_tgkill) + other + ", " + other + ", 0)"};
}

/// What has the kernel send them when a file is ready.
Calls signalsByFilesTo(const std::string& other) {
    return {"fcntl.fcntl(0, fcntl.F_SETOWN, " + other + ")",
            call(SYS_fcntl) + "0, (1 << 32) + fcntl.F_SETOWN, " + other + ")", // the kernel takes 32 bits
            "fcntl.fcntl(0, 10, 9)",                                           // F_SETSIG
            "fcntl.fcntl(0, 15, b'12345678')",                                 // F_SETOWN_EX
            "call('ioctl', 0, 0x8901, 0)",                                     // FIOSETOWN
            "call('ioctl', 0, 0x8902, 0)"};                                    // SIOCSPGRP
}

/// Memory, limits and turns of others.
Calls powerOver(const std::string& other) {
    return {"call('ptrace', 16, " + other + ", 0, 0)",
            "resource.prlimit(" + other + ", resource.RLIMIT_CPU, (1, 1))",
            "os.sched_setaffinity(" + other + ", {0})",
            "os.sched_setscheduler(" + other + ", os.SCHED_BATCH, os.sched_param(0))",
            "os.sched_setparam(" + other + ", os.sched_param(0))",
            call(SYS_sched_setattr) + other + ", 0, 0)"};
}

Calls waysOutOfItsLimits() {
    return {call(SYS_prlimit64) + "0, 1, 1, 0)", call(SYS_prctl) + "1, 0, 0, 0, 0)", // PR_SET_PDEATHSIG
            call(SYS_prctl) + "(1 << 32) + 1, 0, 0, 0, 0)"};
}

Calls nodesIn(const fs::path& folder) {
    const std::string node = "os.mknod('" + folder.native() + "/node', ";
    return {node + "0o140600)", node + "0o020600, os.makedev(1, 5))", node + "0o060600, os.makedev(7, 0))"};
}

} // namespace

std::vector<std::string> forbiddenCalls(const std::string& other, const fs::path& folder) {
    Calls calls;
    for (const Calls& group : {signalsTo(other), signalsByFilesTo(other), powerOver(other),
                               waysOutOfItsLimits(), nodesIn(folder)}) {
        calls.insert(calls.end(), group.begin(), group.end());
    }
    for (const long number : refusedNumbers) {
        calls.push_back(call(number) + "0, -1, -1, -1, -1, -1)");
    }
    for (const unsigned flag : namespaces) {
        calls.push_back(call(SYS_clone) + std::to_string(flag) + ", 0, 0, 0, 0)");
    }
    return calls;
}

} // namespace velmora::test
