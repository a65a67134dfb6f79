#pragma once

// Runs the built velmora-scan as a process of its own and looks at what it leaves.

#include "system/Paths.h"
#include "tests/support/Files.h"

#include <sys/types.h>

#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace velmora::test {

struct Launch {
    using Variables = std::vector<std::pair<std::string, std::string>>;

    std::vector<std::string> arguments;
    fs::path folder = "/";                     ///< working directory
    Variables environment = {};                ///< set over what is there; TERM is xterm, NO_COLOR unset
    fs::path input = "/dev/null";              ///< standard input
    int terminalColumns = 0;                   ///< above 0: standard error is a terminal that wide
    std::function<void()> beforeStart = [] {}; ///< called in the child, last thing
};

struct Finished {
    int status = 0;         ///< exit status; 128 + n after signal n
    bool signalled = false; ///< whether a signal ended it
    std::string output;
    std::string errors; ///< what it wrote to standard error, on a terminal with "\r\n" for line feeds
};

/// A running velmora-scan. Killed if it still runs at the end.
class ScanProcess {
public:
    explicit ScanProcess(const Launch& launch);
    ScanProcess(const ScanProcess&) = delete;
    ScanProcess& operator=(const ScanProcess&) = delete;
    ~ScanProcess();

    pid_t id() const { return m_id; }

    void send(int signal) const;

    /// Whether it has ended; `wait` then returns at once.
    bool ended();

    Finished wait();

private:
    void readTerminal();

    pid_t m_id = -1;
    fs::path m_folder = freshFolder();
    int m_terminal = -1;
    std::string m_shown;
    std::jthread m_reader;
};

/// Runs it to its end.
Finished runToEnd(const Launch& launch);

/// Waits until `condition` holds, looking again and again; a test failure when it does not within a minute.
void waitUntil(const std::function<bool()>& condition);

/// The names of the private directories there are.
std::vector<std::string> privateDirectories();

/// The names of the tools that work in one of them, whoever started them.
std::vector<std::string> toolsAtWork();

/// The paths of everything in the private directories whose name begins with `prefix`.
Paths temporaryPaths(std::string_view prefix);

/// Writes files into `folder` that only ffprobe is left to time, and that it cannot time either: more than it
/// can look at in some seconds.
void writeSlowTracks(const fs::path& folder);

} // namespace velmora::test
