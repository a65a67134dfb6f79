#include "system/RemoveTree.h"

#include "system/RegularFile.h"
#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <string>

namespace velmora {

namespace {

using test::freshFolder;
using test::namesIn;
using test::write;
namespace fs = std::filesystem;

bool isThere(const fs::path& path) {
    return fs::exists(fs::symlink_status(path));
}

/// Makes a chain of `depth` folders below `folder`, with a file in the last.
void makeDeep(const fs::path& folder, int depth) {
    FileDescriptor current(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::string name = "a folder with a long name";
    for (int i = 0; i < depth; ++i) {
        ASSERT_EQ(::mkdirat(current.get(), name.c_str(), 0700), 0);
        current = FileDescriptor(::openat(current.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        ASSERT_TRUE(current);
    }
    const FileDescriptor file(::openat(current.get(), "a.wav", O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_TRUE(file);
}

TEST(RemoveTree, RemovesFoldersFilesAndWhateverElseIsThere) {
    const fs::path folder = freshFolder();
    write(folder / "tree" / "a.wav");
    write(folder / "tree" / ".hidden" / "b.wav");
    write(folder / "tree" / "deep" / "er" / "caf\xE9\n.wav");
    fs::create_directory(folder / "tree" / "empty");
    ASSERT_EQ(::mkfifo((folder / "tree" / "fifo").c_str(), 0600), 0);
    fs::create_symlink("nowhere", folder / "tree" / "dangling");
    EXPECT_TRUE(removeTree(folder / "tree"));
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{});
}

TEST(RemoveTree, RemovesASingleFile) {
    const fs::path file = write(freshFolder() / "a.wav");
    removeTree(file);
    EXPECT_FALSE(isThere(file));
}

TEST(RemoveTree, RemovesLinksButNothingTheyLeadTo) {
    const fs::path folder = freshFolder();
    write(folder / "outside" / "a.wav");
    write(folder / "tree" / "b.wav");
    fs::create_symlink("../outside", folder / "tree" / "to-folder");
    fs::create_symlink("../outside/a.wav", folder / "tree" / "to-file");
    fs::create_symlink("outside", folder / "link");

    removeTree(folder / "tree");
    removeTree(folder / "link");

    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"outside"});
    EXPECT_TRUE(isThere(folder / "outside" / "a.wav"));
}

TEST(RemoveTree, RemovingNothingIsNoFailure) {
    const fs::path folder = freshFolder();
    EXPECT_TRUE(removeTree(folder / "missing"));
    EXPECT_TRUE(removeTree(folder / "missing" / "deeper"));
    EXPECT_TRUE(isThere(folder));
}

TEST(RemoveTree, RemovesFoldersNobodyMayEnter) {
    test::asOrdinaryUser([] {
        const fs::path tree = freshFolder() / "tree";
        for (const char* mode : {"000", "100", "400", "500"}) {
            const fs::path closed = tree / mode;
            write(closed / "inner" / "innermost" / "a.wav");
            const auto permissions = fs::perms(std::stoi(mode, nullptr, 8));
            fs::permissions(closed / "inner" / "innermost", permissions);
            fs::permissions(closed / "inner", permissions);
            fs::permissions(closed, permissions);
        }
        fs::permissions(tree, fs::perms(0));
        removeTree(tree);
        EXPECT_FALSE(isThere(tree));
    });
}

TEST(RemoveTree, EmptiesAFolderThatItMayNotRemove) {
    test::asOrdinaryUser([] {
        const fs::path parent = freshFolder();
        write(parent / "tree" / "folder" / "a.wav");
        fs::permissions(parent, fs::perms(0500));
        EXPECT_FALSE(removeTree(parent / "tree"));
        EXPECT_TRUE(fs::is_empty(parent / "tree"));
        fs::permissions(parent, fs::perms(0700));
    });
}

TEST(RemoveTree, RemovesATreeDeeperThanAPathMayBeLong) {
    const fs::path tree = freshFolder() / "tree";
    fs::create_directory(tree);
    makeDeep(tree, 3000);
    removeTree(tree);
    EXPECT_FALSE(isThere(tree));
}

TEST(RemoveTree, NeedsFewDescriptorsHoweverDeepTheTree) {
    const fs::path tree = freshFolder() / "tree";
    fs::create_directory(tree);
    makeDeep(tree, 50);
    test::inProcess([&] {
        const rlimit limit{16, 16};
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
        removeTree(tree);
    });
    EXPECT_FALSE(isThere(tree));
}

} // namespace

} // namespace velmora
