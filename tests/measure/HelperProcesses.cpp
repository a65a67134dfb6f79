#include "tests/measure/HelperProcesses.h"

#include "tests/support/Files.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <charconv>
#include <csignal>
#include <fstream>
#include <string>

namespace velmora::test {

namespace {

struct Process {
    std::string program; ///< at most 15 bytes of its name
    pid_t parent = -1;   ///< -1 where there is no such process
};

Process processOf(pid_t number) {
    std::ifstream file("/proc/" + std::to_string(number) + "/stat");
    std::string skipped;
    std::string name; // in parentheses
    Process process;
    file >> skipped >> name >> skipped >> process.parent;
    return file ? Process{name.substr(1, name.size() - 2), process.parent} : Process();
}

/// The processes that run `program`.
std::vector<pid_t> processesOf(std::string_view program) {
    std::vector<pid_t> found;
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        pid_t number = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
        if (error == std::errc() && processOf(number).program == program) {
            found.push_back(number);
        }
    }
    return found;
}

bool isBelow(pid_t process, pid_t ancestor) {
    while (process > 0 && process != ancestor) {
        process = processOf(process).parent;
    }
    return process == ancestor;
}

} // namespace

std::vector<pid_t> processesBelow(pid_t ancestor, std::string_view program) {
    std::vector<pid_t> found = processesOf(program);
    std::erase_if(found, [ancestor](pid_t process) { return !isBelow(process, ancestor); });
    return found;
}

std::vector<pid_t> helpersBelow(pid_t parent) {
    std::vector<pid_t> found = processesOf("velmora-libav");
    std::erase_if(found, [parent](pid_t process) { return processOf(process).parent != parent; });
    return found;
}

std::vector<pid_t> helperChildren() {
    const std::vector<pid_t> helpers = helpersBelow(::getpid());
    EXPECT_EQ(helpers.size(), 1);
    return helpers.empty() ? helpers : helpersBelow(helpers.front());
}

void signalAll(const std::vector<pid_t>& processes, int signal) {
    for (const pid_t process : processes) {
        EXPECT_EQ(::kill(process, signal), 0);
    }
}

ProcessEnd::ProcessEnd(pid_t process)
    : m_process(static_cast<int>(::syscall(SYS_pidfd_open, process, 0))) {
    EXPECT_TRUE(m_process) << process;
}

bool ProcessEnd::comes() const {
    pollfd ended{m_process.get(), POLLIN, 0};
    return ::poll(&ended, 1, 60'000) == 1;
}

long statusNumber(pid_t process, std::string_view field) {
    std::ifstream file("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(std::string(field) + ':')) {
            return std::stol(line.substr(field.size() + 1));
        }
    }
    return -1;
}

} // namespace velmora::test
