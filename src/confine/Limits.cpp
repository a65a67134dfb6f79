#include "confine/Limits.h"

#include "confine/Layer.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

namespace velmora {

namespace {

/// Lowers a limit; one that is lower already stays.
void limit(__rlimit_resource resource, rlim_t value) {
    rlimit now{};
    if (::getrlimit(resource, &now) != 0) {
        throw WallError("cannot read a limit");
    }
    const rlim_t lowered = std::min(value, now.rlim_max);
    const rlimit next{lowered, lowered};
    if (::setrlimit(resource, &next) != 0) {
        throw WallError("cannot set a limit");
    }
}

} // namespace

void limitResources(const Rules& rules) {
    limit(RLIMIT_CORE, 1); // 0 would still hand the dump to a program that the kernel is told to start
    limit(RLIMIT_CPU, rules.processorSeconds);
    limit(RLIMIT_FSIZE, rules.fileBytes);
    limit(RLIMIT_AS, rules.memoryBytes);
}

void dieWith(int parent) {
    if (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::getppid() != parent) {
        throw WallError("nobody waits for the tool");
    }
}

} // namespace velmora
