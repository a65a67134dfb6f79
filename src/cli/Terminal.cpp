#include "cli/Terminal.h"

#include "system/Names.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace velmora {

namespace {

/// Standard output, written when much has come together.
class BufferedOutput {
public:
    void add(std::string_view part) {
        m_waiting += part;
        if (m_waiting.size() >= much) {
            flush();
        }
    }

    /// Throws std::system_error.
    void flush() {
        const int error = writeText(STDOUT_FILENO, m_isShown ? terminalLines(m_waiting) : m_waiting);
        if (error != 0) {
            throw std::system_error(error, std::generic_category());
        }
        m_waiting.clear();
    }

private:
    static constexpr std::size_t much = 65'536;

    const bool m_isShown = ::isatty(STDOUT_FILENO) == 1;
    std::string m_waiting; // whole parts
};

} // namespace

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

bool writeOutput(const Text& text) {
    try {
        BufferedOutput output;
        text([&](std::string_view part) { output.add(part); });
        output.flush();
        return true;
    } catch (const std::system_error& error) {
        complain("cannot write the report: " + error.code().message());
        return false;
    }
}

} // namespace velmora
