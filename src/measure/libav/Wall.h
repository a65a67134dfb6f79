#pragma once

// What holds a child of velmora-libav, whose libraries may do whatever a file makes them do: memory and
// system calls.

#include "system/FileDescriptor.h"

#include <cstdint>

namespace velmora {

/// Holds this process to little more memory than it has, and to no core dump, which would leave foreign bytes
/// on the disk. To be put up before `filterCalls`.
class MemoryLimit {
public:
    static constexpr std::int64_t maxGrowth = 64'000'000; ///< of the address space, in bytes

    MemoryLimit();

    bool stands() const { return m_stands; }

    /// Whether so much stayed in use that the next file might miss it.
    bool isUsed() const;

private:
    std::int64_t size() const; ///< of the address space, in bytes

    FileDescriptor m_sizes;
    std::int64_t m_start = 0;
    bool m_stands = false;
};

/// Has the kernel refuse, with EPERM, every system call but those that use memory, read from a descriptor,
/// speak over a socket, tell the time and end this process. False if it does not.
bool filterCalls();

/// Tries, behind the filter, what it is to refuse, and prints a line for each to standard output. The exit
/// status for the program: 0 if all were refused.
int checkFilter();

} // namespace velmora
