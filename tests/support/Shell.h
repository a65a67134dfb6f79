#pragma once

// Runs real tools for a test. A tool that is missing or fails is a test failure, never a skipped test.

#include <filesystem>
#include <string>
#include <string_view>

namespace velmora::test {

struct ShellResult {
    int status = 0; ///< exit status; 128 + n after signal n
    std::string output;
};

/// Runs `command` with the shell in `folder`; standard output is returned, standard error passes through.
ShellResult tryShell(std::string_view command, const std::filesystem::path& folder = ".");

/// As `tryShell`; an exit status other than 0 is a test failure. Returns standard output.
std::string shell(std::string_view command, const std::filesystem::path& folder = ".");

/// The system calls of `command` and of what it starts that concern files or the network, one a line. Its
/// output is lost, its exit status does not count.
std::string systemCallsOf(std::string_view command, const std::filesystem::path& folder = ".");

/// `text` as one word for the shell, whatever it holds.
std::string shellWord(std::string_view text);

} // namespace velmora::test
