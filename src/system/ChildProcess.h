#pragma once

// The one way the program starts other programs. A child gets a session of its own (it cannot ask for a
// password on the user's terminal), a standard input that cannot be read, the null device as standard error
// unless somebody listens, no other descriptor, default signal handling, names in UTF-8 (LC_ALL=C.UTF-8), the
// system's programs alone in its PATH, and no variable that would change a tool's options.

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

/// What a child may cost, and who looks on. It is killed with everything it started when `stop` is requested,
/// `deadline` is over or `watch` says so. The functions are called on the thread that waits for the child.
struct ChildLimits {
    std::stop_token stop = {};
    std::optional<std::chrono::milliseconds> deadline = {}; ///< absent: as long as it takes

    /// Asked again and again while the child runs. Gives the time until it is to be asked next; absent, the
    /// child is killed. Empty: nobody is asked.
    std::function<std::optional<std::chrono::milliseconds>()> watch = {};

    /// Told what the child writes to standard error, piece by piece. Empty: that goes to the null device.
    std::function<void(std::string_view text)> hear = {};
};

/// Whether `path` is a regular file that may be executed.
bool isExecutableFile(const std::filesystem::path& path);

/// Runs `tool` with `args` (without the program's name) and waits for its end; blocks the calling thread.
/// What it started and did not wait for is killed. Standard output goes to the descriptor `output`, or to the
/// null device when that is negative. Returns the exit status, 128 + n after signal n; absent when there is
/// no executable at `tool`, when it cannot be started, or when `stop` was requested before.
std::optional<int> runChild(const std::filesystem::path& tool, const std::vector<std::string>& args,
                            int output, const ChildLimits& limits = {});

/// Starts `tool` with `args` as `runChild` does, but with `input` as standard input, and does not wait: the
/// caller awaits its end by waitpid. Absent when it cannot be started.
std::optional<pid_t> startChild(const std::filesystem::path& tool, const std::vector<std::string>& args,
                                int input);

/// The program `name` of this installation that only its other programs start: in the folder that
/// CMake installs them into, found from the folder of this program; or, in a build tree, in libexec/velmora
/// two folders higher. Absent when it is not there.
std::optional<std::filesystem::path> privateProgram(std::string_view name);

/// What the private program `name` answers to `args` on standard output, at most 4 KiB of it. Empty where it
/// is missing or fails. Blocks until it has ended; any thread.
std::string privateAnswer(std::string_view name, const std::vector<std::string>& args);

} // namespace velmora
