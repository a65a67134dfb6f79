#include "tests/support/Shell.h"

#include "tests/support/Files.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <memory>

namespace velmora::test {

ShellResult tryShell(std::string_view command, const std::filesystem::path& folder) {
    const std::string line = "cd " + shellWord(folder.native()) + " && " + std::string(command);
    FILE* pipe = ::popen(line.c_str(), "r");
    ShellResult result;
    std::array<char, 4096> buffer{};
    while (const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
        result.output.append(buffer.data(), got);
    }
    const int status = ::pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

std::string shell(std::string_view command, const std::filesystem::path& folder) {
    ShellResult result = tryShell(command, folder);
    EXPECT_EQ(result.status, 0) << command;
    return std::move(result.output);
}

std::string systemCallsOf(std::string_view command, const std::filesystem::path& folder) {
    const std::filesystem::path trace = freshFolder() / "trace";
    // A program under observation cannot look for its leaks.
    tryShell("ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=0 strace -f -qq -s 4096 -e trace=%file,%network -o " +
                 shellWord(trace.native()) + " " + std::string(command) + " >/dev/null 2>&1",
             folder);
    return read(trace);
}

std::string shellWord(std::string_view text) {
    std::string result = "'";
    for (const char c : text) {
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return result + "'";
}

} // namespace velmora::test
