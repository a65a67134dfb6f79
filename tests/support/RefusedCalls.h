#pragma once

// Has the kernel refuse calls of this process and of all it starts, for good: for a forked process.

namespace velmora::test {

/// No further thread can be started (EAGAIN); processes can.
void refuseThreads();

/// No file can be locked with flock (ENOLCK), as on some network file systems.
void refuseLocks();

} // namespace velmora::test
