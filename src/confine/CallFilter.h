#pragma once

// Which system calls the tool may make: none that reach the network, other processes, mounts or the kernel
// itself, or undo another layer.

#include "confine/Layer.h"

namespace velmora {

/// Has the kernel refuse those calls with EPERM. To be put up last, as it refuses what other layers take. Not
/// offered by a kernel without seccomp filters.
Layer filterCalls();

} // namespace velmora
