#pragma once

// A PID namespace for the tool: no process but those that it starts can be named in there, and none of them
// outlives it.

#include "confine/Layer.h"

namespace velmora {

/// Goes on as a child in such a namespace. All processes in there are killed when the child ends, or when
/// this process does, which only waits for the child and ends as it did: 128 + n after signal n. To be called
/// while there is one thread, after `mountReadOnly` and before the other layers, which forbid it. Not offered
/// where the user may not have a namespace: then this process goes on.
Layer enterOwnProcesses();

} // namespace velmora
