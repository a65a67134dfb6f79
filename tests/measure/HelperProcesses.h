#pragma once

// Child processes as the system shows them, velmora-libav and its children above all, for tests that harm
// them.

#include "system/FileDescriptor.h"

#include <sys/types.h>

#include <string_view>
#include <vector>

namespace velmora::test {

/// The processes that run `program` and were started by `ancestor` or by what that started.
std::vector<pid_t> processesBelow(pid_t ancestor, std::string_view program);

/// The processes that run velmora-libav and were started by `parent`: the helper below a program, the
/// children below the helper. Those that have ended and are not awaited count, too.
std::vector<pid_t> helpersBelow(pid_t parent);

/// The children of the one helper of this process; a test failure if there is no helper.
std::vector<pid_t> helperChildren();

/// Sends `signal` to each of `processes`.
void signalAll(const std::vector<pid_t>& processes, int signal);

/// Opened while a process lives, to learn of its end.
class ProcessEnd {
public:
    explicit ProcessEnd(pid_t process);

    /// Whether the process ends, for which this waits a minute.
    bool comes() const;

private:
    FileDescriptor m_process;
};

/// A number of /proc/PROCESS/status, such as "VmPeak" in KiB; -1 if there is none.
long statusNumber(pid_t process, std::string_view field);

} // namespace velmora::test
