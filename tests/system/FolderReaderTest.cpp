#include "system/FolderReader.h"

#include "tests/support/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <map>

namespace velmora {

namespace {

using test::freshFolder;
using test::write;
using testing::Pair;
using testing::UnorderedElementsAre;
namespace fs = std::filesystem;

std::map<std::string, EntryKind> entriesOf(FolderReader reader) {
    std::map<std::string, EntryKind> entries;
    while (const auto entry = reader.next()) {
        entries.emplace(entry->name, entry->kind);
    }
    return entries;
}

TEST(FolderReader, TellsFoldersAndLinksFromTheRest) {
    const fs::path folder = freshFolder();
    fs::create_directory(folder / "folder");
    write(folder / "file");
    fs::create_symlink("folder", folder / "link");
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_THAT(entriesOf(FolderReader(folder)),
                UnorderedElementsAre(Pair("folder", EntryKind::folder), Pair("file", EntryKind::other),
                                     Pair("link", EntryKind::link), Pair("fifo", EntryKind::other)));
}

TEST(FolderReader, GivesHiddenNamesButNotTheFolderItself) {
    const fs::path folder = freshFolder();
    write(folder / ".hidden");
    write(folder / "...");
    EXPECT_THAT(entriesOf(FolderReader(folder)),
                UnorderedElementsAre(Pair(".hidden", EntryKind::other), Pair("...", EntryKind::other)));
}

TEST(FolderReader, GivesNamesAsTheirBytes) {
    const fs::path folder = freshFolder();
    write(folder / "caf\xE9\n.wav");
    write(folder / std::string(255, 'x'));
    EXPECT_THAT(entriesOf(FolderReader(folder)),
                UnorderedElementsAre(Pair("caf\xE9\n.wav", EntryKind::other),
                                     Pair(std::string(255, 'x'), EntryKind::other)));
}

TEST(FolderReader, FindsNothingInWhatIsNotAFolder) {
    const fs::path folder = freshFolder();
    EXPECT_THAT(entriesOf(FolderReader(folder)), testing::IsEmpty());
    EXPECT_THAT(entriesOf(FolderReader(folder / "missing")), testing::IsEmpty());
    EXPECT_THAT(entriesOf(FolderReader(write(folder / "file"))), testing::IsEmpty());
    EXPECT_THAT(entriesOf(FolderReader(FileDescriptor())), testing::IsEmpty());
}

TEST(FolderReader, TellsAnErrorFromTheEnd) {
    const fs::path folder = freshFolder();
    FolderReader whole(folder);
    EXPECT_FALSE(whole.next());
    EXPECT_EQ(whole.error(), 0);
    EXPECT_EQ(FolderReader(folder / "missing").error(), ENOENT);
    EXPECT_EQ(FolderReader(write(folder / "file")).error(), ENOTDIR);
}

TEST(FolderReader, OpensAFolderThroughALink) {
    const fs::path folder = freshFolder();
    write(folder / "real" / "file");
    fs::create_symlink("real", folder / "link");
    EXPECT_THAT(entriesOf(FolderReader(folder / "link")),
                UnorderedElementsAre(Pair("file", EntryKind::other)));
}

} // namespace

} // namespace velmora
