#include "system/HiddenFile.h"

#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"
#include "tests/support/RefusedCalls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <system_error>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::UnorderedElementsAre;

/// As a killed program leaves it.
constexpr const char* dead = ".velmora-0B5C2D2A-6A25-4D3F-9F0E-3C1B7A9E8D21";

TEST(HiddenFile, IsTheUsersAloneAndGoesWithItsOwner) {
    const fs::path folder = freshFolder();
    {
        const HiddenFile file(folder);
        EXPECT_EQ(file.path().parent_path(), folder);
        EXPECT_THAT(file.path().filename().native(), MatchesRegex("\\.velmora-[0-9A-F-]{36}"));
        EXPECT_EQ(fs::status(file.path()).permissions(), fs::perms(0600));
    }
    EXPECT_THAT(namesIn(folder), IsEmpty());
}

TEST(HiddenFile, SaysWhyThereIsNone) {
    try {
        const HiddenFile file(freshFolder() / "missing");
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
}

TEST(HiddenFile, NeedsNoLocks) {
    const fs::path folder = freshFolder();
    inProcess([&] {
        refuseLocks();
        const HiddenFile file(folder);
        EXPECT_TRUE(fs::exists(file.path()));
        removeDeadHiddenFiles(folder);
        EXPECT_TRUE(fs::exists(file.path())) << "nobody can tell that it is dead";
    });
}

TEST(DeadHiddenFiles, AreRemovedAndLivingOnesAreNot) {
    const fs::path folder = freshFolder();
    write(folder / dead, "half an archive");
    const HiddenFile living(folder);
    removeDeadHiddenFiles(folder);
    EXPECT_THAT(namesIn(folder), ElementsAre(living.path().filename()));
}

TEST(DeadHiddenFiles, AreKnownByTheirWholeName) {
    const fs::path folder = freshFolder();
    const std::string name = dead;
    write(folder / ".velmora-notes");
    write(folder / (name + ".wav"));
    write(folder / name.substr(1));
    write(folder / (name.substr(0, name.size() - 1) + "z"));
    removeDeadHiddenFiles(folder);
    EXPECT_THAT(namesIn(folder), UnorderedElementsAre(".velmora-notes", name + ".wav", name.substr(1),
                                                      name.substr(0, name.size() - 1) + "z"));
}

TEST(DeadHiddenFiles, ThatAreLinksLeadNowhere) {
    const fs::path folder = freshFolder();
    const fs::path file = write(folder / "a.wav", "content");
    fs::create_symlink(file, folder / dead);
    removeDeadHiddenFiles(folder);
    EXPECT_EQ(read(file), "content");
}

TEST(DeadHiddenFiles, InAFolderThatCannotBeListedAreNoFailure) {
    EXPECT_NO_THROW(removeDeadHiddenFiles(freshFolder() / "missing"));
}

} // namespace
} // namespace velmora::test
