#include "tests/confine/Wall.h"

#include "system/FileDescriptor.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <sstream>

namespace velmora::test {

namespace {

constexpr int patience = 60'000; // milliseconds until a test gives up

constexpr std::string_view pythonScript = R"(
import ctypes, errno, fcntl, os, resource, socket
def call(name, *words):
    library = ctypes.CDLL(None, use_errno=True)
    function = library.syscall if isinstance(name, int) else library[name]
    words = [name, *words] if isinstance(name, int) else words
    result = function(*map(ctypes.c_long, words))
    if result < 0:
        raise OSError(ctypes.get_errno(), "")
    return result
def answer(expression):
    try:
        return eval(expression)
    except OSError as error:
        return errno.errorcode[error.errno]
)";

} // namespace

bool offers(std::string_view layer) {
    return wallReport().find(std::string(layer) + ": stands") != std::string::npos;
}

bool hasLandlock() {
    return ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) >= 2;
}

std::optional<int> Wall::status(const std::string& script) const {
    return runConfined("/bin/sh", {"-c", script}, -1, rules);
}

std::string Wall::output(const std::string& script) const {
    const FileDescriptor file(::memfd_create("output", MFD_CLOEXEC));
    runConfined("/bin/sh", {"-c", "exec 2>&1; " + script}, file.get(), rules);
    return read("/proc/self/fd/" + std::to_string(file.get()));
}

std::vector<std::string> Wall::python(const std::vector<std::string>& expressions) const {
    std::string script(pythonScript);
    for (const std::string& expression : expressions) {
        script += "print(answer(\"" + expression + "\"))\n";
    }
    const fs::path program = write(out / "script.py", script);
    std::istringstream answers(output("exec /usr/bin/python3 -B -I " + program.native()));
    std::vector<std::string> lines(expressions.size());
    for (std::string& line : lines) {
        std::getline(answers, line);
    }
    return lines;
}

std::string Wall::python(const std::string& expression) const {
    return python(std::vector{expression}).front();
}

bool Wall::endsWithItsParent(const std::string& script) const {
    std::array<int, 2> ends{}; // whoever lives has the writing end
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const pid_t parent = ::fork();
    if (parent == 0) {
        runConfined("/bin/sh", {"-c", "echo; " + script}, ends[1], rules);
        ::_exit(0);
    }
    ::close(ends[1]);
    const FileDescriptor reading(ends[0]);
    char byte = 0;
    EXPECT_EQ(::read(reading.get(), &byte, 1), 1) << "the tool runs";
    ::kill(parent, SIGKILL);
    ::waitpid(parent, nullptr, 0);
    pollfd ended{reading.get(), POLLIN, 0};
    return ::poll(&ended, 1, patience) == 1 && ::read(reading.get(), &byte, 1) == 0;
}

} // namespace velmora::test
