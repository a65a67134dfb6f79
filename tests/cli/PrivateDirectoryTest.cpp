#include "cli/PrivateDirectory.h"

#include "cli/DeadRuns.h"
#include "cli/RunLock.h"
#include "system/RemoveTree.h"
#include "tests/support/Files.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

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
        EXPECT_EQ(fs::temp_directory_path(), directory.path());
        EXPECT_EQ(directory.path().parent_path(), outer.path());
        EXPECT_THAT(directory.path().filename().native(), MatchesRegex("scan-velmora-[A-Za-z0-9]{6}"));
    }
    EXPECT_EQ(fs::temp_directory_path(), outer.path());
}

TEST(PrivateDirectory, IsTheUsersAlone) {
    const EmptyTmpdir outer;
    const PrivateDirectory directory;
    EXPECT_EQ(fs::status(directory.path()).permissions(), fs::perms::owner_all);
}

TEST(PrivateDirectory, GoesWithEverythingInIt) {
    const EmptyTmpdir outer;
    {
        const PrivateDirectory directory;
        write(directory.path() / "a" / "b" / "c.wav");
        fs::permissions(directory.path() / "a", fs::perms::none);
    }
    EXPECT_THAT(namesIn(outer.path()), IsEmpty());
}

TEST(PrivateDirectory, LeavesTmpdirUnsetIfItWas) {
    const EmptyTmpdir outer;
    ::unsetenv("TMPDIR");
    { const PrivateDirectory directory; }
    EXPECT_EQ(std::getenv("TMPDIR"), nullptr);
}

TEST(PrivateDirectory, SaysWhyThereIsNone) {
    const EmptyTmpdir outer;
    const fs::path missing = outer.path() / "missing";
    ::setenv("TMPDIR", missing.c_str(), 1);
    {
        const PrivateDirectory directory;
        EXPECT_EQ(directory.problem(),
                  "cannot make a directory in '" + missing.native() + "': No such file or directory");
        EXPECT_STREQ(std::getenv("TMPDIR"), "/dev/null") << "where nothing can be made";
    }
    EXPECT_EQ(std::getenv("TMPDIR"), missing.native());
}

TEST(PrivateDirectory, RemovesWhatADeadRunLeft) {
    const EmptyTmpdir outer;
    write(outer.path() / "scan-velmora-dead00" / "velmora-1" / "a.wav");
    const PrivateDirectory directory;
    EXPECT_THAT(namesIn(outer.path()), ElementsAre(directory.path().filename()));
}

TEST(PrivateDirectory, LeavesWhatALivingRunUses) {
    const EmptyTmpdir outer;
    const PrivateDirectory living;
    write(living.path() / "velmora-1" / "a.wav");
    removeDeadRuns(outer.path());
    EXPECT_TRUE(fs::exists(living.path() / "velmora-1" / "a.wav"));
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
    first.reset();
    EXPECT_TRUE(lockRun(directory));
}

TEST(RunLock, IsNotLeftToATool) {
    const fs::path directory = freshFolder();
    const FileDescriptor lock = lockRun(directory);
    shell("test ! -e /proc/self/fd/" + std::to_string(lock.get()));
}

} // namespace
} // namespace velmora::test
