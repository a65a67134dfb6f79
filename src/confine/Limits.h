#pragma once

// What the tool may cost, and how long it may live.

#include "confine/Rules.h"

namespace velmora {

/// Holds this process to the limits in `rules`, and to no core dump, which would leave foreign bytes on the
/// disk.
void limitResources(const Rules& rules);

/// Has the kernel kill this process when the thread that started it ends. Ends the program when `parent` has
/// ended already.
void dieWith(int parent);

} // namespace velmora
