#include "tests/export/ChildRun.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace velmora::test {

std::string inChild(const std::function<std::string()>& work) {
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) {
        ADD_FAILURE() << "no pipe";
        return {};
    }
    const pid_t child = ::fork();
    if (child == 0) {
        const std::string result = work();
        const ssize_t written = ::write(pipe[1], result.data(), result.size());
        ::_exit(written == static_cast<ssize_t>(result.size()) ? 0 : 1);
    }
    ::close(pipe[1]);
    std::string result;
    std::array<char, 4096> buffer{};
    for (ssize_t got = 0; (got = ::read(pipe[0], buffer.data(), buffer.size())) > 0;) {
        result.append(buffer.data(), static_cast<std::size_t>(got));
    }
    ::close(pipe[0]);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "the child ended early";
    return result;
}

void becomeOrdinaryUser() {
    constexpr uid_t nobody = 65534;
    if (::geteuid() == 0 &&
        (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0)) {
        std::abort();
    }
}

} // namespace velmora::test
