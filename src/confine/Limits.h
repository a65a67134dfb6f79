#pragma once

// What the tool may cost, and how long it may live.

#include "confine/Rules.h"

namespace velmora {

/// Holds this process to the limits in `rules`, and to no core dump, which would leave foreign bytes on the
/// disk.
void limitResources(const Rules& rules);

/// Has the kernel kill this process when the thread that started it ends. False when `parent` has ended
/// already.
bool dieWith(int parent);

} // namespace velmora
