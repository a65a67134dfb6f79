#include "system/FileMove.h"

#include "system/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <system_error>

namespace velmora::test {
namespace {

using testing::ElementsAre;

/// The reason why `work` failed; no error when it did not.
template <typename Work>
std::error_code failureOf(Work work) {
    try {
        work();
        return {};
    } catch (const fs::filesystem_error& error) {
        return error.code();
    }
}

class FileMove : public testing::Test {
protected:
    const fs::path from = write(freshFolder() / "new", std::string(60000, 'n'));
    const fs::path to = write(freshFolder() / "file", "old");
};

/// From one file system to another.
class FileMoveAcross : public testing::Test {
protected:
    void SetUp() override {
        struct stat here {};

        struct stat there {};

        ASSERT_EQ(::stat(from.c_str(), &here) | ::stat(to.c_str(), &there), 0);
        ASSERT_NE(here.st_dev, there.st_dev) << "/dev/shm is a file system of its own";
    }

    const TemporaryDirectory folder = TemporaryDirectory::makeUnique("/dev/shm/test-velmora-").value();
    const fs::path from = write(freshFolder() / "new", std::string(60000, 'n'));
    const fs::path to = write(folder.path() / "file", "old");
};

TEST_F(FileMove, ReplacesAFile) {
    moveReplacing(from, to);
    EXPECT_EQ(read(to), std::string(60000, 'n'));
    EXPECT_FALSE(fs::exists(from));
}

TEST_F(FileMove, ReplacesALinkAndNotWhatItLeadsTo) {
    const fs::path link = to.parent_path() / "link";
    fs::create_symlink(to, link);
    moveReplacing(from, link);
    EXPECT_FALSE(fs::is_symlink(link));
    EXPECT_EQ(read(to), "old");
}

TEST_F(FileMove, NamesTheFileThatCouldNotBeReplaced) {
    try {
        moveReplacing(from, to.parent_path() / "missing" / "file");
        FAIL();
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.path1(), to.parent_path() / "missing" / "file");
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
    EXPECT_EQ(read(from), std::string(60000, 'n'));
}

TEST_F(FileMoveAcross, LeavesNothingBesideTheFile) {
    fs::permissions(from, fs::perms(0640));
    moveReplacing(from, to);
    EXPECT_EQ(read(to), std::string(60000, 'n'));
    EXPECT_EQ(fs::status(to).permissions(), fs::perms(0640));
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("file"));
}

TEST_F(FileMoveAcross, RemovesTheCopyThatAKilledProgramLeft) {
    write(folder.path() / ".velmora-0B5C2D2A-6A25-4D3F-9F0E-3C1B7A9E8D21", "half a file");
    moveReplacing(from, to);
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("file"));
}

TEST_F(FileMoveAcross, ReplacesALinkAndNotWhatItLeadsTo) {
    fs::create_symlink(to, folder.path() / "link");
    moveReplacing(from, folder.path() / "link");
    EXPECT_FALSE(fs::is_symlink(folder.path() / "link"));
    EXPECT_EQ(read(to), "old");
}

/// As on a full disk, writing fails after the first bytes.
TEST_F(FileMoveAcross, LeavesTheOldFileWholeWhenTheNewOneFindsNoRoom) {
    inProcess([&] {
        const rlimit limits = {50000, 50000};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limits), 0);
        std::signal(SIGXFSZ, SIG_IGN);
        EXPECT_EQ(failureOf([&] { moveReplacing(from, to); }), std::errc::file_too_large);
    });
    EXPECT_EQ(read(to), "old");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("file"));
}

TEST_F(FileMoveAcross, LeavesTheOldFileWholeWhenStopped) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(failureOf([&] { moveReplacing(from, to, stop.get_token()); }), std::errc::operation_canceled);
    EXPECT_EQ(read(to), "old");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("file"));
}

} // namespace
} // namespace velmora::test
