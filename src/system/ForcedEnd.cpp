#include "system/ForcedEnd.h"

#include "system/DeadRuns.h"
#include "system/PrivateDirectory.h"
#include "system/RemoveTree.h"

#include <poll.h>
#include <unistd.h>

#include <exception>
#include <filesystem>
#include <system_error>
#include <thread>

namespace velmora {

namespace {

constexpr int patience = 2000; // milliseconds

/// As often as the directory is removed while another thread goes on to its next tool.
constexpr int maxRemovals = 10;

[[noreturn]] void endWithout(const std::filesystem::path& directory, int status) noexcept {
    try {
        for (int i = 0; i < maxRemovals && ::access(directory.c_str(), F_OK) == 0; ++i) {
            removeWithTools(directory);
        }
    } catch (const std::exception&) { // no memory to look for tools, which end with the program
        removeTree(directory);
    }
    ::_exit(status);
}

} // namespace

void endNow(int status) noexcept {
    endWithout(PrivateDirectory::present(), status);
}

void endSoon(int ending, int status) {
    try {
        std::thread([=, directory = PrivateDirectory::present()] {
            pollfd again{ending, POLLIN, 0};
            ::poll(&again, 1, patience); // cut short by a signal as well
            endWithout(directory, status);
        }).detach();
    } catch (const std::system_error&) { // then the program ends when its work does
    }
}

} // namespace velmora
