#include "system/PrivateDirectory.h"

#include "system/ChildProcess.h"
#include "system/DeadRuns.h"
#include "system/RunLock.h"
#include "system/TempRegistry.h"
#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"
#include "tests/support/Shell.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <optional>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

/// A temporary directory with nothing in it, which TMPDIR names while it lives.
class EmptyTmpdir {
public:
    EmptyTmpdir() { ::setenv("TMPDIR", m_path.c_str(), 1); }

    EmptyTmpdir(const EmptyTmpdir&) = delete;
    EmptyTmpdir& operator=(const EmptyTmpdir&) = delete;

    ~EmptyTmpdir() { ::setenv("TMPDIR", m_outer.c_str(), 1); }

    const fs::path& path() const { return m_path; }

private:
    fs::path m_outer = fs::temp_directory_path();
    fs::path m_path = freshFolder();
};

TEST(PrivateDirectory, IsTheTemporaryDirectoryWhileItExists) {
    const EmptyTmpdir outer;
    {
        const PrivateDirectory directory;
        EXPECT_FALSE(directory.failure());
        EXPECT_TRUE(fs::is_directory(temporaryDirectory()));
        EXPECT_EQ(temporaryDirectory().parent_path(), outer.path());
        EXPECT_THAT(temporaryDirectory().filename().native(), MatchesRegex("scan-velmora-[A-Za-z0-9]{6}"));
    }
    EXPECT_EQ(temporaryDirectory(), outer.path());
}

TEST(PrivateDirectory, IsTheUsersAlone) {
    const EmptyTmpdir outer;
    const PrivateDirectory directory;
    EXPECT_EQ(fs::status(temporaryDirectory()).permissions(), fs::perms::owner_all);
}

TEST(PrivateDirectory, GoesWithEverythingInIt) {
    const EmptyTmpdir outer;
    {
        const PrivateDirectory directory;
        write(temporaryDirectory() / "a" / "b" / "c.wav");
        fs::permissions(temporaryDirectory() / "a", fs::perms::none);
    }
    EXPECT_THAT(namesIn(outer.path()), IsEmpty());
}

/// What the program starts besides its tools, such as a browser, outlives the directory.
TEST(PrivateDirectory, IsNotInTheEnvironment) {
    const EmptyTmpdir outer;
    const PrivateDirectory directory;
    EXPECT_EQ(fs::path(std::getenv("TMPDIR")), outer.path());
}

TEST(PrivateDirectory, TellsWhyThereIsNone) {
    const EmptyTmpdir outer;
    const fs::path missing = outer.path() / "missing";
    ::setenv("TMPDIR", missing.c_str(), 1);
    const PrivateDirectory directory;
    EXPECT_EQ(directory.failure(), std::errc::no_such_file_or_directory);
    EXPECT_EQ(directory.parent(), missing);
}

/// Whatever the reason: here there is no descriptor left to lock a directory with.
TEST(PrivateDirectory, LeavesAUsersFilesAloneWhereThereIsNone) {
    const EmptyTmpdir outer;
    write(outer.path() / "velmora-my-recordings" / "a.wav");
    inProcess([] {
        rlimit enough{};
        ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &enough), 0);
        const rlimit none = {.rlim_cur = 3, .rlim_max = enough.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
        const PrivateDirectory directory;
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &enough), 0); // a sanitizer needs descriptors for its checks
        EXPECT_EQ(directory.failure(), std::errc::too_many_files_open);
        TempRegistry::sweepStale();
    });
    EXPECT_THAT(namesIn(outer.path()), ElementsAre("velmora-my-recordings"));
}

TEST(PrivateDirectory, IsTheToolsTemporaryDirectory) {
    const EmptyTmpdir outer;
    const PrivateDirectory directory;
    const fs::path told = outer.path() / "told";
    const FileDescriptor file(::open(told.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    EXPECT_EQ(runChild("/bin/sh", {"-c", "printf %s \"$TMPDIR\""}, file.get()), 0);
    EXPECT_EQ(read(told), temporaryDirectory().native());
}

TEST(PrivateDirectory, RemovesWhatADeadRunLeft) {
    const EmptyTmpdir outer;
    write(outer.path() / "scan-velmora-dead00" / "velmora-1" / "a.wav");
    const PrivateDirectory directory;
    EXPECT_THAT(namesIn(outer.path()), ElementsAre(temporaryDirectory().filename()));
}

TEST(PrivateDirectory, LeavesWhatALivingRunUses) {
    const EmptyTmpdir outer;
    const PrivateDirectory living;
    const fs::path file = write(temporaryDirectory() / "velmora-1" / "a.wav");
    removeDeadRuns(outer.path());
    EXPECT_TRUE(fs::exists(file));
}

TEST(DeadRuns, AreKnownByTheirNameAndByBeingDirectories) {
    const fs::path parent = freshFolder();
    const fs::path target = freshFolder();
    write(target / "kept.wav");
    write(parent / "velmora-1" / "a.wav");
    write(parent / "Scan-velmora-aaaaaa" / "a.wav");
    write(parent / "scan-velmora-file00");
    fs::create_directory_symlink(target, parent / "scan-velmora-link00");
    write(parent / "scan-velmora-dead00" / "a.wav");

    removeDeadRuns(parent);

    EXPECT_THAT(namesIn(parent), ElementsAre("Scan-velmora-aaaaaa", "scan-velmora-file00",
                                             "scan-velmora-link00", "velmora-1"));
    EXPECT_TRUE(fs::exists(target / "kept.wav"));
}

TEST(DeadRuns, OfAnotherUserAreNotTouched) {
    const fs::path parent = freshFolder();
    const fs::path other = parent / "scan-velmora-other0";
    fs::create_directory(other);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(other.c_str(), 65534, 65534), 0);
        removeDeadRuns(parent);
        EXPECT_TRUE(fs::exists(other));
    } else {
        EXPECT_FALSE(lockRun("/")) << "the root folder is another user's";
    }
}

TEST(DeadRuns, InAFolderThatCannotBeListedAreNoFailure) {
    EXPECT_NO_THROW(removeDeadRuns(freshFolder() / "missing"));
}

TEST(RunLock, IsHeldOnce) {
    const fs::path directory = freshFolder();
    std::optional<FileDescriptor> first = lockRun(directory);
    EXPECT_TRUE(*first);
    EXPECT_FALSE(lockRun(directory));
    EXPECT_EQ(errno, EWOULDBLOCK);
    first.reset();
    EXPECT_TRUE(lockRun(directory));
}

TEST(RunLock, SaysWhatIsNotThere) {
    EXPECT_FALSE(lockRun(freshFolder() / "missing"));
    EXPECT_EQ(errno, ENOENT);
}

TEST(RunLock, IsNotLeftToATool) {
    const fs::path directory = freshFolder();
    const FileDescriptor lock = lockRun(directory);
    shell("test ! -e /proc/self/fd/" + std::to_string(lock.get()));
}

} // namespace
} // namespace velmora::test
