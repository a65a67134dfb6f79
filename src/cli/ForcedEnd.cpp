#include "cli/ForcedEnd.h"

#include "cli/ExitStatus.h"
#include "system/RemoveTree.h"

#include <poll.h>
#include <unistd.h>

#include <system_error>
#include <thread>

namespace velmora {

namespace {

constexpr int patience = 2000; // milliseconds

} // namespace

void endSoon(int signals, const std::filesystem::path& directory) {
    try {
        std::thread([=] {
            pollfd again{signals, POLLIN, 0};
            ::poll(&again, 1, patience); // cut short by a signal as well
            if (!directory.empty()) {
                removeTree(directory);
            }
            ::_exit(static_cast<int>(ExitStatus::interrupted));
        }).detach();
    } catch (const std::system_error&) { // then the program ends when its work does
    }
}

} // namespace velmora
