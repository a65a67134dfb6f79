#include "system/TemporaryDirectory.h"

#include "tests/support/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <utility>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

TEST(TemporaryDirectory, IsThereForThisUserAloneAndGoesWithEverythingInIt) {
    const fs::path folder = freshFolder();
    {
        const auto directory = TemporaryDirectory::make(folder / "new");
        ASSERT_TRUE(directory);
        EXPECT_EQ(directory->path(), folder / "new");
        EXPECT_EQ(fs::status(directory->path()).permissions(), fs::perms::owner_all);
        write(directory->path() / "a" / "b.wav");
    }
    EXPECT_THAT(namesIn(folder), IsEmpty());
}

TEST(TemporaryDirectory, GetsANameOfItsOwn) {
    const fs::path folder = freshFolder();
    const auto first = TemporaryDirectory::makeUnique(folder / "run-");
    const auto second = TemporaryDirectory::makeUnique(folder / "run-");
    ASSERT_TRUE(first && second);
    EXPECT_THAT(namesIn(folder), ElementsAre(MatchesRegex("run-[A-Za-z0-9]{6}"), MatchesRegex("run-.{6}")));
    EXPECT_EQ(fs::status(first->path()).permissions(), fs::perms::owner_all);
}

TEST(TemporaryDirectory, DoesNotTakeWhatIsThere) {
    const fs::path folder = freshFolder();
    write(folder / "old" / "a.wav");
    EXPECT_FALSE(TemporaryDirectory::make(folder / "old"));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_TRUE(fs::exists(folder / "old" / "a.wav"));
}

TEST(TemporaryDirectory, NeedsAFolderToLieIn) {
    const fs::path missing = freshFolder() / "missing";
    EXPECT_FALSE(TemporaryDirectory::make(missing / "new"));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(TemporaryDirectory::makeUnique(missing / "run-"));
    EXPECT_EQ(errno, ENOENT);
}

TEST(TemporaryDirectory, StaysWhenItIsReleased) {
    const fs::path folder = freshFolder();
    EXPECT_EQ(TemporaryDirectory::make(folder / "new")->release(), folder / "new");
    EXPECT_TRUE(fs::is_directory(folder / "new"));
}

TEST(TemporaryDirectory, HasOneOwner) {
    const fs::path folder = freshFolder();
    auto owner = TemporaryDirectory::make(folder / "first");
    {
        TemporaryDirectory next(std::move(*owner));
        owner.reset();
        EXPECT_TRUE(fs::exists(folder / "first"));
        next = std::move(*TemporaryDirectory::make(folder / "second"));
        EXPECT_THAT(namesIn(folder), ElementsAre("second"));
    }
    EXPECT_THAT(namesIn(folder), IsEmpty());
}

} // namespace
} // namespace velmora::test
