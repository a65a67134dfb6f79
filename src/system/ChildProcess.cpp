#include "system/ChildProcess.h"

#include "system/ChildWaiting.h"
#include "system/TemporaryDirectory.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>
#include <thread>

namespace velmora {

namespace {

/// How often it is looked whether killed processes have ended.
constexpr int maxLooks = 2000;

/// Variables in which the archive tools look for options, and those that are set for them below.
constexpr auto toolVariables = std::to_array<std::string_view>(
    {"TAR_OPTIONS=", "TAR_READER_OPTIONS=", "TAPE=", "UNZIP=", "UNZIPOPT=", "GZIP=", "BZIP=", "BZIP2=",
     "XZ_OPT=", "XZ_DEFAULTS=", "LC_ALL=", "LANGUAGE=", "POSIXLY_CORRECT=", "PATH=", "TMPDIR="});

std::vector<std::string> childEnvironment() {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view variable = *entry;
        const bool dropped = std::any_of(toolVariables.begin(), toolVariables.end(),
                                         [&](std::string_view name) { return variable.starts_with(name); });
        if (!dropped) {
            result.emplace_back(variable);
        }
    }
    result.emplace_back("LC_ALL=C.UTF-8");
    result.emplace_back("PATH=/usr/bin:/bin");                      // tar looks for gzip and its like there
    result.emplace_back("TMPDIR=" + temporaryDirectory().native()); // a tool of a dead run is known by it
    return result;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

/// The attributes and descriptors of a child, in the form posix_spawn takes them.
class SpawnSettings {
public:
    SpawnSettings(int input, int output, int errors) {
        posix_spawnattr_init(&m_attributes);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setsigdefault(&m_attributes, &all);
        posix_spawnattr_setflags(&m_attributes,
                                 POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

        posix_spawn_file_actions_init(&m_actions);
        if (output < 0) {
            posix_spawn_file_actions_addopen(&m_actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        } else {
            posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
        }
        if (input < 0) {
            // Reading fails instead of ending: a tool that wants a password gives up at its first prompt.
            posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_WRONLY, 0);
        } else {
            posix_spawn_file_actions_adddup2(&m_actions, input, STDIN_FILENO);
        }
        if (errors < 0) {
            posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        } else {
            posix_spawn_file_actions_adddup2(&m_actions, errors, STDERR_FILENO);
        }
        posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
    }

    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }

    const posix_spawnattr_t* attributes() const { return &m_attributes; }

    const posix_spawn_file_actions_t* actions() const { return &m_actions; }

private:
    posix_spawnattr_t m_attributes{};
    posix_spawn_file_actions_t m_actions{};
};

/// Absent when the system refuses.
std::optional<pid_t> spawn(const std::filesystem::path& tool, const std::vector<std::string>& args, int input,
                           int output, int errors) {
    std::vector<std::string> words = {tool.native()};
    words.insert(words.end(), args.begin(), args.end());
    std::vector<std::string> environment = childEnvironment();
    const SpawnSettings settings(input, output, errors);
    pid_t child = 0;
    const int error = ::posix_spawn(&child, tool.c_str(), settings.actions(), settings.attributes(),
                                    pointers(words).data(), pointers(environment).data());
    return error == 0 ? std::optional(child) : std::nullopt;
}

/// Whether the process is of the group, and has not ended: whoever waits for it may take time to do so.
bool livesIn(pid_t group, const std::filesystem::path& process) {
    std::ifstream file(process / "stat");
    std::string line; // number (name) state parent group ...
    std::getline(file, line);
    std::istringstream words(line.substr(line.rfind(')') + 1));
    char state = 'X';
    pid_t parent = 0;
    pid_t itsGroup = 0;
    words >> state >> parent >> itsGroup;
    return itsGroup == group && state != 'Z' && state != 'X';
}

bool anyLivesIn(pid_t group) {
    if (::kill(-group, 0) != 0) {
        return false;
    }
    std::error_code error;
    const std::filesystem::directory_iterator processes("/proc", error);
    return std::any_of(begin(processes), end(processes),
                       [=](const auto& process) { return livesIn(group, process.path()); });
}

/// Waits, for a while, until the processes that were killed with the child have ended, too: one in the middle
/// of a call may still make a file. They are not this program's children.
void awaitEndOfGroup(pid_t child) {
    for (int i = 0; i < maxLooks && anyLivesIn(child); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

/// Undoes a SIGCHLD that whoever started this program set to be ignored: the system would forget how a child
/// ended.
void keepExitStatuses() {
    struct sigaction action {};

    if (::sigaction(SIGCHLD, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) {
        std::signal(SIGCHLD, SIG_DFL);
    }
}

std::optional<int> reap(pid_t child) {
    int status = 0;
    pid_t ended = 0;
    do {
        ended = ::waitpid(child, &status, 0);
    } while (ended < 0 && errno == EINTR);
    if (ended != child) {
        return std::nullopt;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

bool isExecutableFile(const std::filesystem::path& path) {
    struct stat status {};

    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

std::optional<int> runChild(const std::filesystem::path& tool, const std::vector<std::string>& args,
                            int output, const ChildLimits& limits) {
    if (limits.stop.stop_requested() || !isExecutableFile(tool)) {
        return std::nullopt;
    }
    keepExitStatuses();
    ErrorPipe errors(limits.hear);
    const std::optional<pid_t> child = spawn(tool, args, -1, output, errors.writing());
    errors.closeWriting();
    if (!child) {
        return std::nullopt;
    }
    awaitEnd(*child, limits, errors);
    ::kill(-*child, SIGKILL); // whatever it started and did not wait for
    const std::optional<int> status = reap(*child);
    awaitEndOfGroup(*child);
    return status;
}

std::optional<pid_t> startChild(const std::filesystem::path& tool, const std::vector<std::string>& args,
                                int input) {
    return spawn(tool, args, input, -1, -1);
}

std::optional<std::filesystem::path> privateProgram(std::string_view name) {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const char* way : {VELMORA_WAY_TO_PRIVATE_PROGRAMS, "../../libexec/velmora"}) {
        const std::filesystem::path program = (folder / way / name).lexically_normal();
        if (!error && isExecutableFile(program)) {
            return program;
        }
    }
    return std::nullopt;
}

std::string privateAnswer(std::string_view name, const std::vector<std::string>& args) {
    constexpr std::size_t maxBytes = 4096;
    const std::optional<std::filesystem::path> program = privateProgram(name);
    const FileDescriptor answer(::memfd_create("answer", MFD_CLOEXEC));
    if (!program || !answer || runChild(*program, args, answer.get()) != 0) {
        return {};
    }
    std::string text(maxBytes, '\0');
    const ssize_t size = ::pread(answer.get(), text.data(), text.size(), 0);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    return text;
}

} // namespace velmora
