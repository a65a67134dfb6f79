#pragma once

// What the models of slow storage have in common: they are served through FUSE by a program that behaves as a
// device does.

#include <fuse.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>

#include <cstdio>
#include <vector>

namespace velmora::bench {

/// Serves `operations` in the foreground until they are unmounted. `options` are further arguments of FUSE,
/// the last one the folder to mount on. No other program keeps it from a processor, as none keeps a device
/// from working; that needs root. When the program that started it ends, it unmounts itself and ends too.
/// Returns the exit status.
inline int serve(const fuse_operations& operations, std::vector<const char*> options) {
    const sched_param first{.sched_priority = 1};
    if (::sched_setscheduler(0, SCHED_FIFO, &first) != 0 || ::prctl(PR_SET_PDEATHSIG, SIGTERM) != 0) {
        std::perror("a modelled device");
        return 1;
    }
    options.insert(options.begin(), {"modelled device", "-f"});
    std::vector<char*> arguments;
    for (const char* const option : options) {
        arguments.push_back(const_cast<char*>(option)); // FUSE writes to none of them
    }
    return fuse_main(static_cast<int>(arguments.size()), arguments.data(), &operations, nullptr);
}

} // namespace velmora::bench
