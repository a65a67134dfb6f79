#pragma once

// Which system calls the tool may make: none that reach the network, other processes, mounts or the kernel
// itself.

#include "confine/Layer.h"

namespace velmora {

/// Has the kernel refuse those calls with EPERM. Not offered by a kernel without seccomp filters.
Layer filterCalls();

} // namespace velmora
