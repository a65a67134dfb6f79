#include "cli/Terminal.h"

#include "system/Names.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace velmora {

void reserveStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) < 0) {
            // Standard input is opened for writing and the others for reading, so that using one is an error.
            // The file gets the lowest free number, which is `descriptor`.
            (void)::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

int writeText(int descriptor, std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) { // another program made it non-blocking
            pollfd room{descriptor, POLLOUT, 0};
            ::poll(&room, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

void complain(std::string_view message) noexcept {
    for (const std::string_view part :
         {std::string_view("velmora-scan: "), message, std::string_view("\n")}) {
        writeText(STDERR_FILENO, part);
    }
}

bool writeOutput(std::string_view text) {
    const bool isShown = ::isatty(STDOUT_FILENO) == 1;
    const int error =
        isShown ? writeText(STDOUT_FILENO, terminalLines(text)) : writeText(STDOUT_FILENO, text);
    if (error != 0) {
        complain("cannot write the report: " + std::generic_category().message(error));
    }
    return error == 0;
}

} // namespace velmora
