#pragma once

// Has the kernel refuse calls of this process and of all it starts, for good: for a forked process.

namespace velmora::test {

/// No further thread can be started (EAGAIN); processes can.
void refuseThreads();

/// No file can be locked with flock (ENOLCK), as on some network file systems.
void refuseLocks();

/// No folder can be listed (EIO), as on a disk that fails.
void refuseListing();

/// Nothing can be mounted in another way than it is (ENOSYS), as before Linux 5.12.
void refuseMountAttributes();

/// There is no Landlock (ENOSYS), as before Linux 5.13.
void refuseLandlock();

/// Nobody has a PID namespace of their own (EPERM), as where user namespaces are forbidden.
void refusePidNamespaces();

/// There are no filters of system calls (EINVAL). To be refused last, as each of these is such a filter.
void refuseCallFilters();

} // namespace velmora::test
