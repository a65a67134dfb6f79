#include "system/DeadRuns.h"

#include "system/Paths.h"
#include "system/RemoveTree.h"
#include "system/RunLock.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr int killPatience = 2000; // milliseconds to wait for the end of a killed process

/// The entries of `directory`; none where it cannot be listed.
Paths entriesOf(const fs::path& directory) {
    Paths entries;
    std::error_code error;
    for (fs::directory_iterator entry(directory, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        entries.push_back(entry->path());
    }
    return entries;
}

/// Whether the process was started with the environment variable `entry`, "NAME=value". Not known, and so
/// false, of another user's process.
bool hasVariable(const fs::path& process, std::string_view entry) {
    std::ifstream stream(process / "environ", std::ios::binary);
    const std::string environment{std::istreambuf_iterator<char>(stream), {}};
    const std::string between = std::string(1, '\0') + environment;
    return between.find(std::string(1, '\0') + std::string(entry) + '\0') != std::string::npos;
}

void awaitEnd(const FileDescriptor& process) {
    pollfd ended{process.get(), POLLIN, 0};
    while (::poll(&ended, 1, killPatience) < 0 && errno == EINTR) {
    }
}

/// Kills the process if it works with `variable`, and waits for its end.
void killIfMarked(const fs::path& process, std::string_view variable) {
    const std::string name = process.filename();
    pid_t id = 0;
    if (std::from_chars(name.data(), name.data() + name.size(), id).ec != std::errc()) {
        return; // not a process
    }
    // The handle is taken first: what is read next is then known to be of the process that gets the signal.
    const FileDescriptor handle(static_cast<int>(::syscall(SYS_pidfd_open, id, 0)));
    if (handle && hasVariable(process, variable) &&
        ::syscall(SYS_pidfd_send_signal, handle.get(), SIGKILL, nullptr, 0) == 0) {
        awaitEnd(handle);
    }
}

} // namespace

void removeDeadRuns(const fs::path& parent) {
    for (const fs::path& path : entriesOf(parent)) {
        if (!path.filename().native().starts_with(runPrefix)) {
            continue;
        }
        if (const FileDescriptor lock = lockRun(path)) {
            removeWithTools(path);
        }
    }
}

void removeWithTools(const fs::path& directory) {
    const std::string variable = "TMPDIR=" + directory.native();
    std::ranges::for_each(entriesOf("/proc"),
                          [&](const fs::path& process) { killIfMarked(process, variable); });
    removeTree(directory);
}

} // namespace velmora
