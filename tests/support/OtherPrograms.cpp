#include "tests/support/OtherPrograms.h"

#include <filesystem>
#include <fstream>

namespace velmora::test {

namespace {

namespace fs = std::filesystem;

/// The value of TMPDIR the process was started with.
std::string tmpdirOf(const fs::path& process) {
    std::ifstream stream(process / "environ", std::ios::binary);
    for (std::string entry; std::getline(stream, entry, '\0');) {
        if (entry.starts_with("TMPDIR=")) {
            return entry.substr(std::string_view("TMPDIR=").size());
        }
    }
    return {};
}

/// Empty when the process has gone meanwhile.
std::string nameOf(const fs::path& process) {
    std::ifstream stream(process / "comm");
    std::string name;
    std::getline(stream, name);
    return name;
}

} // namespace

std::vector<std::string> programsWorkingIn(std::string_view prefix) {
    std::vector<std::string> names;
    for (const fs::directory_entry& process : fs::directory_iterator("/proc")) {
        if (tmpdirOf(process.path()).starts_with(prefix)) {
            names.push_back(nameOf(process.path()));
        }
    }
    return names;
}

} // namespace velmora::test
