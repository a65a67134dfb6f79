#include "system/OwnerAccess.h"

#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace velmora {

namespace {

using test::freshFolder;
using test::write;
namespace fs = std::filesystem;

unsigned modeOf(const fs::path& path) {
    return static_cast<unsigned>(fs::status(path).permissions());
}

TEST(OwnerAccess, AddsOnlyTheBitsThatAreMissing) {
    const fs::path file = write(freshFolder() / "a.wav");
    fs::permissions(file, fs::perms(0040));
    grantOwner(AT_FDCWD, file.c_str(), 0400);
    EXPECT_EQ(modeOf(file), 0440U);
    grantOwner(AT_FDCWD, file.c_str(), 0400);
    EXPECT_EQ(modeOf(file), 0440U);
}

TEST(OwnerAccess, LeavesWhatALinkLeadsTo) {
    const fs::path folder = freshFolder();
    const fs::path file = write(folder / "a.wav");
    fs::permissions(file, fs::perms(0));
    fs::create_symlink("a.wav", folder / "link.wav");
    grantOwner(AT_FDCWD, (folder / "link.wav").c_str(), 0700);
    grantOwner(AT_FDCWD, (folder / "missing").c_str(), 0700);
    EXPECT_EQ(modeOf(file), 0U);
}

TEST(OwnerAccess, OpensAFolderThatIsClosed) {
    test::asOrdinaryUser([] {
        const fs::path parent = freshFolder();
        for (const unsigned mode : {0U, 0100U, 0400U, 0500U, 0700U}) {
            const fs::path folder = parent / std::to_string(mode);
            fs::create_directory(folder);
            fs::permissions(folder, fs::perms(mode | 0050));
            const FileDescriptor opened = openOwnFolder(AT_FDCWD, folder.c_str());
            EXPECT_TRUE(opened);
            EXPECT_EQ(modeOf(folder), 0750U);
        }
    });
}

TEST(OwnerAccess, OpensNothingButFolders) {
    const fs::path folder = freshFolder();
    fs::create_directory(folder / "outside");
    fs::permissions(folder / "outside", fs::perms(0));
    fs::create_symlink("outside", folder / "link");
    write(folder / "a.wav");
    EXPECT_FALSE(openOwnFolder(AT_FDCWD, (folder / "link").c_str()));
    EXPECT_FALSE(openOwnFolder(AT_FDCWD, (folder / "a.wav").c_str()));
    EXPECT_FALSE(openOwnFolder(AT_FDCWD, (folder / "missing").c_str()));
    EXPECT_EQ(modeOf(folder / "outside"), 0U);
}

} // namespace

} // namespace velmora
