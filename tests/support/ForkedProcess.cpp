#include "tests/support/ForkedProcess.h"

#include "tests/support/Files.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace velmora::test {

namespace {

constexpr uid_t nobody = 65534;

[[noreturn]] void finishChild(const Body& body) {
    try {
        body();
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
    }
    std::fflush(nullptr);
    ::_exit(testing::Test::HasFailure() ? 1 : 0);
}

void awaitChild(pid_t child, const std::string& written = {}) {
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "wait status " << status << "\n" << written;
}

void becomeNobody() {
    ASSERT_EQ(::setgroups(0, nullptr), 0);
    ASSERT_EQ(::setresgid(nobody, nobody, nobody), 0);
    ASSERT_EQ(::setresuid(nobody, nobody, nobody), 0);
}

} // namespace

void inProcess(const Body& body) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        finishChild(body);
    }
    awaitChild(child);
}

void asOrdinaryUser(const Body& body) {
    const fs::path temporary = freshFolder();
    if (::geteuid() == 0) {
        ASSERT_EQ(::chmod(fs::temp_directory_path().c_str(), 0711), 0);
        ASSERT_EQ(::chown(temporary.c_str(), nobody, nobody), 0);
    }
    inProcess([&] {
        if (::geteuid() == 0) {
            becomeNobody();
        }
        ::setenv("TMPDIR", temporary.c_str(), 1);
        body();
    });
}

std::string onTerminal(const Body& body) {
    std::fflush(nullptr);
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child < 0) {
        ADD_FAILURE() << "no terminal";
        return {};
    }
    if (child == 0) {
        finishChild(body);
    }
    std::string written;
    std::array<char, 4096> buffer{};
    ssize_t got = 0;
    while ((got = ::read(terminal, buffer.data(), buffer.size())) > 0) { // fails when the last user is gone
        written.append(buffer.data(), static_cast<std::size_t>(got));
    }
    ::close(terminal);
    awaitChild(child, written);
    return written;
}

} // namespace velmora::test
