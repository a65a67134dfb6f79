#pragma once

// A process may be given little address space (ulimit -v, RLIMIT_AS), and threads take much more of it than
// they ever use: 8 MB for each one's stack, 64 MB for each one's heap.

namespace velmora {

/// Where the address space is limited, lets threads have small stacks and one common heap: a scan of many
/// files then finds room, and takes a little longer. For the start of a program, before its first thread.
void saveAddressSpace();

} // namespace velmora
