// What the file panel lists of a folder.

#include "tests/support/Files.h"
#include "ui/panel/FileList.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> namesOf(const std::vector<ListedFile>& files) {
    std::vector<std::string> names;
    std::ranges::transform(files, std::back_inserter(names), &ListedFile::name);
    return names;
}

const ListedFile& named(const FolderContents& contents, const std::string& name) {
    return *std::ranges::find(contents.files, name, &ListedFile::name);
}

FolderContents readWhole(const fs::path& folder) {
    FolderContents contents = readFolder(folder);
    lookAtFiles(contents);
    return contents;
}

TEST(FolderContents, TellsKindsSizesAndTimesInNaturalOrder) {
    const fs::path folder = freshFolder();
    write(folder / "track 10.wav", "0123456789");
    write(folder / "Track 2.FLAC", "01");
    write(folder / "set.tar.gz", "0");
    write(folder / "notes", "012");
    fs::create_directory(folder / "album.zip");
    const FolderContents contents = readWhole(folder);
    EXPECT_EQ(contents.error, 0);
    EXPECT_THAT(namesOf(contents.files),
                ElementsAre("album.zip", "notes", "set.tar.gz", "Track 2.FLAC", "track 10.wav"));
    EXPECT_EQ(named(contents, "album.zip").kind, ListedKind::folder);
    EXPECT_EQ(named(contents, "notes").kind, ListedKind::other);
    EXPECT_EQ(named(contents, "set.tar.gz").kind, ListedKind::archive);
    EXPECT_EQ(named(contents, "Track 2.FLAC").kind, ListedKind::audio);
    EXPECT_EQ(named(contents, "track 10.wav").bytes, 10);

    struct stat status {};

    ASSERT_EQ(::stat((folder / "notes").c_str(), &status), 0);
    EXPECT_EQ(named(contents, "notes").modified, status.st_mtim.tv_sec);
}

TEST(FolderContents, FollowsLinksAndKeepsEveryName) {
    const fs::path folder = freshFolder();
    fs::create_directory(folder / "album");
    fs::create_symlink("album", folder / "to a folder");
    fs::create_symlink("nowhere", folder / "lost.wav");
    write(folder / "\xff.ogg", "0");
    const FolderContents contents = readWhole(folder);
    EXPECT_EQ(named(contents, "to a folder").kind, ListedKind::folder);
    EXPECT_EQ(named(contents, "lost.wav").kind, ListedKind::audio);
    EXPECT_EQ(named(contents, "lost.wav").bytes, -1);
    EXPECT_EQ(named(contents, "\xff.ogg").kind, ListedKind::audio);
}

TEST(FolderContents, OpensNoFile) {
    const fs::path folder = freshFolder();
    const fs::path file = write(folder / "a.wav", "0");
    const int watch = ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    ASSERT_GE(::inotify_add_watch(watch, file.c_str(), IN_OPEN), 0);
    ASSERT_EQ(::mkfifo((folder / "pipe.wav").c_str(), 0600), 0); // to open it would block
    EXPECT_EQ(readWhole(folder).files.size(), 2);
    std::array<char, 256> events{};
    EXPECT_LT(::read(watch, events.data(), events.size()), 0);
    EXPECT_EQ(errno, EAGAIN);
    ::close(watch);
}

TEST(FolderContents, SaysWhyThereIsNone) {
    const fs::path folder = freshFolder();
    EXPECT_EQ(readFolder(folder / "gone").error, ENOENT);
    EXPECT_EQ(readFolder(write(folder / "file", "")).error, ENOTDIR);
}

TEST(FolderContents, SortsManyFilesInParts) {
    const fs::path folder = freshFolder();
    for (int i = 5000; i > 0; --i) {
        write(folder / (std::to_string(i) + ".wav"));
    }
    const FolderContents contents = readFolder(folder);
    ASSERT_EQ(contents.files.size(), 5000);
    for (std::size_t i = 0; i < contents.files.size(); ++i) {
        ASSERT_EQ(contents.files[i].name, std::to_string(i + 1) + ".wav");
    }
}

class FileListTest : public testing::Test {
protected:
    void SetUp() override {
        list.show({{"Album", ListedKind::folder, -1, 50},
                   {"a.wav", ListedKind::audio, 300, 30},
                   {"b.wav", ListedKind::audio, 100, 20},
                   {"c.txt", ListedKind::other, 400, 10},
                   {".d.wav", ListedKind::audio, 200, 40},
                   {"Sets", ListedKind::folder, -1, 60}});
    }

    std::vector<std::string> rows() const {
        std::vector<std::string> names;
        for (int row = 0; row < list.count(); ++row) {
            names.push_back(list.file(row).name);
        }
        return names;
    }

    FileList list;
};

TEST_F(FileListTest, ShowsWhatCanBeMeasuredFoldersFirst) {
    EXPECT_THAT(rows(), ElementsAre("Album", "Sets", "a.wav", "b.wav"));
    list.setAll(true);
    EXPECT_THAT(rows(), ElementsAre("Album", "Sets", "a.wav", "b.wav", "c.txt"));
    list.setHiddenToo(true);
    EXPECT_THAT(rows(), ElementsAre("Album", "Sets", "a.wav", "b.wav", "c.txt", ".d.wav"));
    list.setAll(false);
    EXPECT_THAT(rows(), ElementsAre("Album", "Sets", "a.wav", "b.wav", ".d.wav"));
}

TEST_F(FileListTest, SortsByEachColumnBothWays) {
    list.setHiddenToo(true);
    list.sortBy(FileList::Size);
    EXPECT_THAT(rows(), ElementsAre("Album", "Sets", "b.wav", ".d.wav", "a.wav"));
    list.sortBy(FileList::Size);
    EXPECT_THAT(rows(), ElementsAre("Album", "Sets", "a.wav", ".d.wav", "b.wav"));
    list.sortBy(FileList::Date);
    EXPECT_THAT(rows(), ElementsAre("Album", "Sets", "b.wav", "a.wav", ".d.wav"));
    list.sortBy(FileList::Name);
    EXPECT_THAT(rows(), ElementsAre("Album", "Sets", "a.wav", "b.wav", ".d.wav"));
    list.sortBy(FileList::Name);
    EXPECT_THAT(rows(), ElementsAre("Sets", "Album", ".d.wav", "b.wav", "a.wav"));
}

TEST_F(FileListTest, SelectsOneSomeOrAll) {
    EXPECT_THAT(list.selected(), IsEmpty());
    list.choose(1);
    EXPECT_THAT(list.selected(), ElementsAre("Sets"));
    list.extendTo(3);
    EXPECT_THAT(list.selected(), ElementsAre("Sets", "a.wav", "b.wav"));
    list.extendTo(0);
    EXPECT_THAT(list.selected(), ElementsAre("Album", "Sets"));
    list.toggle(3);
    list.toggle(0);
    EXPECT_THAT(list.selected(), ElementsAre("Sets", "b.wav"));
    list.selectAll();
    EXPECT_EQ(list.selectedCount(), 4);
    list.choose(99);
    EXPECT_THAT(list.selected(), ElementsAre("b.wav"));
}

TEST_F(FileListTest, KeepsSelectionAndCurrentRowWhenItIsSorted) {
    list.choose(2);
    list.sortBy(FileList::Size);
    EXPECT_THAT(list.selected(), ElementsAre("a.wav"));
    EXPECT_EQ(list.current(), 3);
    EXPECT_EQ(list.data(list.index(3), FileList::SelectedRole), true);
    EXPECT_EQ(list.data(list.index(2), FileList::SelectedRole), false);
}

TEST_F(FileListTest, TakesSizesAndTimesLater) {
    list.show({{"a.wav", ListedKind::audio}, {"b.wav", ListedKind::audio}});
    list.choose(0);
    EXPECT_EQ(list.data(list.index(0), FileList::SizeRole), "");
    list.addDetails({{"a.wav", ListedKind::audio, 200, 1}, {"b.wav", ListedKind::audio, 100, 1}});
    EXPECT_EQ(list.data(list.index(0), FileList::SizeRole), "200 bytes");
    list.sortBy(FileList::Size);
    list.addDetails({{"a.wav", ListedKind::audio, 1, 1}, {"b.wav", ListedKind::audio, 2, 1}});
    EXPECT_THAT(rows(), ElementsAre("a.wav", "b.wav"));
    EXPECT_THAT(list.selected(), ElementsAre("a.wav"));
}

TEST_F(FileListTest, SelectsNothingThatItDoesNotShow) {
    list.setAll(true);
    list.choose(4);
    EXPECT_THAT(list.selected(), ElementsAre("c.txt"));
    list.setAll(false);
    EXPECT_EQ(list.selectedCount(), 0);
}

TEST_F(FileListTest, FindsNamesByTheirFirstLettersAllRound) {
    EXPECT_EQ(list.find("A", 0), 0);
    EXPECT_EQ(list.find("a", 1), 2);
    EXPECT_EQ(list.find("a", 3), 0);
    EXPECT_EQ(list.find("a.", 0), 2);
    EXPECT_EQ(list.find("x", 0), -1);
    list.show({});
    EXPECT_EQ(list.find("a", 1), -1);
    list.choose(0);
    list.toggle(0);
    list.extendTo(1);
    EXPECT_EQ(list.current(), -1);
}

TEST_F(FileListTest, ShowsSizesAsTheWindowDoesAndNoControlCharacters) {
    list.show({{"a\nb\xff.wav", ListedKind::audio, 1'500'000, 0}, {"Album", ListedKind::folder, 4096, 0}});
    EXPECT_EQ(list.data(list.index(1), FileList::NameRole), QString::fromUtf8("a\uFFFDb\uFFFD.wav"));
    EXPECT_EQ(list.data(list.index(1), FileList::SizeRole), "1.5 MB");
    EXPECT_EQ(list.data(list.index(1), FileList::DateRole), "");
    EXPECT_EQ(list.data(list.index(0), FileList::SizeRole), "") << "what a folder takes tells nothing";
}

} // namespace
} // namespace velmora::test
