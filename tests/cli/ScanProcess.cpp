#include "tests/cli/ScanProcess.h"

#include "system/Paths.h"
#include "tests/support/OtherPrograms.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>

namespace velmora::test {

namespace {

constexpr std::string_view runPrefix = "scan-velmora-";

void redirect(int descriptor, const fs::path& file, int flags) {
    const int opened = ::open(file.c_str(), flags | O_CLOEXEC, 0600);
    ::dup2(opened, descriptor);
}

[[noreturn]] void becomeScan(const Launch& launch, const fs::path& folder, int terminal) {
    redirect(STDIN_FILENO, launch.input, O_RDONLY);
    redirect(STDOUT_FILENO, folder / "out", O_WRONLY | O_CREAT);
    if (terminal < 0) {
        redirect(STDERR_FILENO, folder / "err", O_WRONLY | O_CREAT);
    } else {
        ::dup2(terminal, STDERR_FILENO);
    }
    ::setenv("TERM", "xterm", 1);
    ::unsetenv("NO_COLOR");
    for (const auto& [name, value] : launch.environment) {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<std::string> words = launch.arguments;
    words.insert(words.begin(), "velmora-scan");
    std::vector<char*> pointers(words.size() + 1, nullptr);
    std::ranges::transform(words, pointers.begin(), [](std::string& word) { return word.data(); });
    if (::chdir(launch.folder.c_str()) == 0) {
        launch.beforeStart();
        ::execv(VELMORA_SCAN, pointers.data());
    }
    ::_exit(127);
}

std::string contentOf(const fs::path& file) {
    return fs::exists(file) ? read(file) : std::string();
}

} // namespace

ScanProcess::ScanProcess(const Launch& launch) {
    int terminal = -1;
    if (launch.terminalColumns > 0) {
        const winsize size{.ws_row = 24,
                           .ws_col = static_cast<unsigned short>(launch.terminalColumns),
                           .ws_xpixel = 0,
                           .ws_ypixel = 0};
        EXPECT_EQ(::openpty(&m_terminal, &terminal, nullptr, nullptr, &size), 0);
        ::fcntl(m_terminal, F_SETFD, FD_CLOEXEC);
        ::fcntl(terminal, F_SETFD, FD_CLOEXEC);
    }
    m_id = ::fork();
    if (m_id == 0) {
        becomeScan(launch, m_folder, terminal);
    }
    EXPECT_GT(m_id, 0);
    if (m_terminal >= 0) {
        ::close(terminal);
        m_reader = std::jthread([this] { readTerminal(); });
    }
}

ScanProcess::~ScanProcess() {
    if (m_id > 0) {
        send(SIGKILL);
        wait();
    }
}

void ScanProcess::send(int signal) const {
    EXPECT_EQ(::kill(m_id, signal), 0);
}

bool ScanProcess::ended() {
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(m_id), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == m_id;
}

Finished ScanProcess::wait() {
    int status = 0;
    EXPECT_EQ(::waitpid(m_id, &status, 0), m_id);
    m_id = -1;
    if (m_reader.joinable()) {
        m_reader.join();
        ::close(m_terminal);
    }
    Finished finished;
    finished.signalled = WIFSIGNALED(status);
    finished.status = finished.signalled ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    finished.output = contentOf(m_folder / "out");
    finished.errors = contentOf(m_folder / "err") + m_shown;
    return finished;
}

/// Reads until no process has the terminal any more: read fails then.
void ScanProcess::readTerminal() {
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t got = ::read(m_terminal, buffer.data(), buffer.size());
        if (got <= 0 && errno != EINTR) {
            return;
        }
        m_shown.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    }
}

Finished runToEnd(const Launch& launch) {
    return ScanProcess(launch).wait();
}

void waitUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            FAIL() << "waited in vain";
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

std::vector<std::string> privateDirectories() {
    return namesIn(fs::temp_directory_path(), runPrefix);
}

std::vector<std::string> toolsAtWork() {
    return programsWorkingIn((fs::temp_directory_path() / runPrefix).native());
}

Paths temporaryPaths(std::string_view prefix) {
    Paths paths;
    for (const std::string& run : privateDirectories()) {
        const fs::path directory = fs::temp_directory_path() / run;
        for (const std::string& name : namesIn(directory, prefix)) {
            paths.push_back(directory / name);
        }
    }
    return paths;
}

void writeSlowTracks(const fs::path& folder) {
    constexpr int tracks = 500;
    for (int i = 0; i < tracks; ++i) {
        write(folder / (std::to_string(i) + ".ogg"), "OggS" + std::string(2000, '0'));
    }
}

} // namespace velmora::test
