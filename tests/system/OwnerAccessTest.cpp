#include "system/OwnerAccess.h"

#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace velmora {

namespace {

using test::freshFolder;
using test::read;
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

TEST(OwnerAccess, OpensATreeToItsOwner) {
    test::asOrdinaryUser([] {
        const fs::path folder = freshFolder();
        write(folder / "outer" / "inner" / "a.wav", "content");
        fs::permissions(folder / "outer" / "inner" / "a.wav", fs::perms(0));
        fs::permissions(folder / "outer" / "inner", fs::perms(0));
        fs::permissions(folder / "outer", fs::perms(0));

        grantOwnerBelow(folder);

        EXPECT_EQ(read(folder / "outer" / "inner" / "a.wav"), "content");
        EXPECT_EQ(modeOf(folder / "outer"), 0700U);
        EXPECT_EQ(modeOf(folder / "outer" / "inner" / "a.wav"), 0400U);
    });
}

TEST(OwnerAccess, StaysInsideTheTree) {
    const fs::path folder = freshFolder();
    const fs::path outside = write(folder / "outside" / "a.wav");
    fs::permissions(outside, fs::perms(0));
    fs::create_directory(folder / "tree");
    fs::create_symlink("../outside", folder / "tree" / "link");
    fs::create_symlink("../outside/a.wav", folder / "tree" / "a.wav");
    grantOwnerBelow(folder / "tree");
    EXPECT_EQ(modeOf(outside), 0U);
}

} // namespace

} // namespace velmora
