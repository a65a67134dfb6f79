#include "gather/ExtractionCleanup.h"

#include "tests/gather/Found.h"
#include "tests/support/ForkedProcess.h"
#include "tests/support/RefusedCalls.h"
#include "tests/support/Snapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

namespace velmora {

namespace {

using Collector::keepOwnContent;
using Collector::keepPlainFiles;
using test::filesBelow;
using test::freshFolder;
using test::write;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

/// An extraction directory with a plain file in it, and a folder outside.
class ExtractionCleanup : public testing::Test {
protected:
    fs::path directory = freshFolder();
    fs::path plain = write(directory / "folder" / "plain.wav", "x");
    fs::path outside = freshFolder();
    fs::path victim = write(outside / "victim.wav", "untouched");
    test::Snapshot before = test::snapshotOf(outside);

    void link(const fs::path& name, const fs::path& target) const {
        fs::create_directories((directory / name).parent_path());
        fs::create_symlink(target, directory / name);
    }

    void makeSpecialFiles() const {
        EXPECT_EQ(::mkfifo((directory / "fifo.wav").c_str(), 0600), 0);
        const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        fs::current_path(directory / "folder"); // an address holds 107 bytes
        std::string("socket.wav").copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        ::close(socket);
        if (::geteuid() == 0) { // nobody else can make a device
            EXPECT_EQ(::mknod((directory / "device.wav").c_str(), S_IFCHR | 0600, makedev(1, 5)), 0);
        }
    }

    void TearDown() override { EXPECT_EQ(test::snapshotOf(outside), before); }
};

TEST_F(ExtractionCleanup, KeepsPlainFilesAlone) {
    makeSpecialFiles();
    link("file.wav", victim);
    link("folder/inner", "..");
    link("dangling", "nowhere");
    write(directory / "a", "x");
    fs::create_hard_link(directory / "a", directory / "folder" / "b");
    EXPECT_TRUE(keepPlainFiles(directory));
    EXPECT_THAT(filesBelow(directory), ElementsAre("folder/plain.wav"));
    EXPECT_EQ(test::read(plain), "x");
}

TEST_F(ExtractionCleanup, RemovesAHardLinkWithoutTouchingTheFile) {
    const fs::path mine = write(freshFolder() / "mine.wav", "untouched");
    fs::create_hard_link(mine, directory / "one.wav");
    fs::create_hard_link(mine, directory / "two.wav");
    EXPECT_TRUE(keepOwnContent(directory));
    EXPECT_THAT(filesBelow(directory), ElementsAre("folder/plain.wav"));
    fs::create_hard_link(mine, directory / "one.wav");
    EXPECT_TRUE(keepPlainFiles(directory));
    EXPECT_THAT(filesBelow(directory), ElementsAre("folder/plain.wav"));
    EXPECT_EQ(test::read(mine), "untouched");
    EXPECT_EQ(fs::hard_link_count(mine), 1U);
}

TEST_F(ExtractionCleanup, OpensNoFileThatIsNotTheArchives) {
    const fs::path mine = write(freshFolder() / "mine.wav");
    fs::permissions(mine, fs::perms(0));
    fs::create_hard_link(mine, directory / "hard.wav");
    link("soft.wav", mine);
    EXPECT_TRUE(keepOwnContent(directory));
    EXPECT_THAT(filesBelow(directory), ElementsAre("folder/plain.wav"));
    EXPECT_EQ(fs::status(mine).permissions(), fs::perms(0));
}

TEST_F(ExtractionCleanup, KeepsTheLinksOfAnArchiveToItself) {
    link("relative.wav", "folder/plain.wav");
    link("folder/up.wav", "../folder/./plain.wav");
    link("second", "folder");
    link("chain.wav", "second/plain.wav");
    link("dangling.wav", "folder/nowhere.wav");
    link("loop.wav", "loop.wav");
    fs::create_hard_link(plain, directory / "hard.wav");
    EXPECT_TRUE(keepOwnContent(directory));
    EXPECT_THAT(filesBelow(directory),
                ElementsAre("chain.wav", "dangling.wav", "folder/plain.wav", "folder/up.wav", "hard.wav",
                            "loop.wav", "relative.wav", "second"));
}

TEST_F(ExtractionCleanup, RemovesLinksThatLeadOut) {
    makeSpecialFiles();
    link("absolute.wav", victim);
    link("relative.wav", fs::path("..") / outside.filename() / "victim.wav");
    link("folder.zip", outside);
    link("root", "/");
    link("self.wav", "/proc/self/exe");
    link("later.wav", outside / "later.wav"); // nothing is there yet
    link("through.wav", "root/etc/passwd");
    link("folder/up.wav", "../../victim.wav");
    link("round.wav", fs::path("..") / directory.filename() / "folder/plain.wav"); // out and in again
    EXPECT_TRUE(keepOwnContent(directory));
    EXPECT_THAT(filesBelow(directory), testing::IsSubsetOf({"folder/plain.wav", "through.wav"}));
    EXPECT_FALSE(fs::exists(directory / "through.wav"));
}

TEST_F(ExtractionCleanup, OpensWhatIsClosed) {
    test::asOrdinaryUser([] {
        const fs::path closed = freshFolder();
        write(closed / "a" / "b" / "plain.wav", "x");
        fs::create_symlink("/etc/passwd", closed / "a" / "b" / "link.wav");
        fs::create_symlink("a/b/plain.wav", closed / "inside.wav");
        const auto close = [&] {
            fs::permissions(closed / "a" / "b" / "plain.wav", fs::perms(0));
            fs::permissions(closed / "a" / "b", fs::perms(0));
            fs::permissions(closed / "a", fs::perms(0111));
            fs::permissions(closed, fs::perms(0));
        };
        close();
        EXPECT_TRUE(keepOwnContent(closed));
        EXPECT_THAT(filesBelow(closed), ElementsAre("a/b/plain.wav", "inside.wav"));
        EXPECT_EQ(test::read(closed / "inside.wav"), "x");
        close();
        EXPECT_TRUE(keepPlainFiles(closed));
        EXPECT_THAT(filesBelow(closed), ElementsAre("a/b/plain.wav"));
    });
}

TEST_F(ExtractionCleanup, IsNotDoneWhereAFolderCannotBeListed) {
    link("out.wav", victim);
    test::inProcess([this] {
        test::refuseListing();
        EXPECT_FALSE(keepPlainFiles(directory));
        EXPECT_FALSE(keepOwnContent(directory));
    });
    EXPECT_TRUE(keepOwnContent(directory));
    EXPECT_THAT(filesBelow(directory), ElementsAre("folder/plain.wav"));
}

TEST_F(ExtractionCleanup, IsNotDoneWhereTheDirectoryIsNoMore) {
    fs::remove_all(directory);
    EXPECT_FALSE(keepPlainFiles(directory));
    fs::create_symlink(outside, directory); // a link in the directory's place
    EXPECT_FALSE(keepPlainFiles(directory));
    EXPECT_FALSE(keepOwnContent(directory));
    EXPECT_TRUE(Collector::makeEmpty(directory));
    EXPECT_TRUE(fs::is_directory(fs::symlink_status(directory)));
    EXPECT_THAT(filesBelow(directory), IsEmpty());
    EXPECT_EQ(fs::status(directory).permissions(), fs::perms(0700));
}

} // namespace

} // namespace velmora
