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

/// The parent of the process, if that runs `program`; -1 if not.
pid_t parentOf(pid_t process, std::string_view program) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string number;
    std::string name; // at most 15 bytes, in parentheses
    std::string state;
    pid_t parent = -1;
    file >> number >> name >> state >> parent;
    return file && name == '(' + std::string(program) + ')' ? parent : -1;
}

} // namespace

std::vector<pid_t> processesBelow(pid_t parent, std::string_view program) {
    std::vector<pid_t> found;
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        pid_t process = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
        if (error == std::errc() && parentOf(process, program) == parent) {
            found.push_back(process);
        }
    }
    return found;
}

std::vector<pid_t> helpersBelow(pid_t parent) {
    return processesBelow(parent, "velmora-libav");
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
