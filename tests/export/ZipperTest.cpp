#include "export/Zipper.h"

#include "system/Paths.h"
#include "tests/export/ZipReading.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

void zipQuietly(const Paths& files, const Paths& roots, const fs::path& destination) {
    Zipper::zip(files, roots, destination, [](int, int) {});
}

class ZipperTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_THAT(temporaryItems(), IsEmpty()); }

    const fs::path folder = freshFolder();
    const fs::path destination = folder / "Mix.zip";
};

TEST_F(ZipperTest, PacksFilesUnderTheirRelativePathsInOneFolder) {
    const fs::path album = folder / "Album";
    const fs::path extracted = folder / "velmora-1";
    const Paths files = {write(album / "CD1/01.wav", "one"), write(album / "CD1/02.mp3", "two"),
                         write(folder / "single.flac", "single"), write(extracted / "Disc/01.wav", "packed")};
    zipQuietly(files, {album, folder / "single.flac", folder / "set.zip", extracted}, destination);

    expectWhole(destination);
    EXPECT_THAT(namesOf(destination), ElementsAre("Mix/", "Mix/CD1/", "Mix/CD1/01.wav", "Mix/CD1/02.mp3",
                                                  "Mix/single.flac", "Mix/Disc/", "Mix/Disc/01.wav"));
    EXPECT_THAT(unpacked(destination),
                UnorderedElementsAre(Pair("Mix/CD1/01.wav", "one"), Pair("Mix/CD1/02.mp3", "two"),
                                     Pair("Mix/single.flac", "single"), Pair("Mix/Disc/01.wav", "packed")));
}

TEST_F(ZipperTest, NumbersDuplicatesWithoutLosingAny) {
    Paths files;
    Paths roots;
    for (const char* name : {"A/01.wav", "B/01.wav", "C/01.WAV", "A/README", "B/README", "B/x.mp3/1.mp3",
                             "A/x.mp3", "A/\xC3\xA9.mp3", "B/e\xCC\x81.mp3"}) {
        files.push_back(write(folder / name, name));
        roots.push_back((folder / name).parent_path());
    }
    roots.insert(roots.begin(), folder / "B");
    zipQuietly(files, roots, destination);

    expectWhole(destination);
    EXPECT_THAT(
        unpacked(destination),
        UnorderedElementsAre(Pair("Mix/01.wav", "A/01.wav"), Pair("Mix/01 (2).wav", "B/01.wav"),
                             Pair("Mix/01 (3).WAV", "C/01.WAV"), Pair("Mix/README", "A/README"),
                             Pair("Mix/README (2).", "B/README"), Pair("Mix/x.mp3/1.mp3", "B/x.mp3/1.mp3"),
                             Pair("Mix/x (2).mp3", "A/x.mp3"), Pair("Mix/\xC3\xA9.mp3", "A/\xC3\xA9.mp3"),
                             Pair("Mix/e\xCC\x81.mp3", "B/e\xCC\x81.mp3")));
}

TEST_F(ZipperTest, ReportsEveryStagedFileInOrder) {
    Paths files;
    for (int i = 0; i < 5; ++i) {
        files.push_back(write(folder / (std::to_string(i) + ".mp3"), "x"));
    }
    std::vector<std::pair<int, int>> calls;
    Zipper::zip(files, {folder}, destination, [&](int done, int total) {
        EXPECT_FALSE(fs::exists(destination));
        calls.emplace_back(done, total);
    });
    EXPECT_THAT(calls, ElementsAre(Pair(1, 5), Pair(2, 5), Pair(3, 5), Pair(4, 5), Pair(5, 5)));
}

TEST_F(ZipperTest, StagesInAPrivateDirectoryUnderTheArchivesName) {
    const fs::path file = write(folder / "Album/CD1/01.mp3", "content");
    Zipper::zip({file}, {folder / "Album"}, destination, [&](int, int) {
        const std::vector<std::string> items = temporaryItems();
        ASSERT_EQ(items.size(), 1U);
        EXPECT_THAT(items[0], testing::MatchesRegex("velmora-zip-[0-9A-F-]{36}"));
        const fs::path staging = fs::temp_directory_path() / items[0];
        EXPECT_EQ(fs::status(staging).permissions(), fs::perms::owner_all);
        EXPECT_EQ(read(staging / "Mix/CD1/01.mp3"), "content");
    });
}

TEST_F(ZipperTest, NamesTheFolderAfterTheDestination) {
    struct Row {
        const char* destination;
        const char* folder;
    };

    const std::vector<Row> rows = {
        {"Mix.zip", "Mix/"},
        {"Mix", "Mix/"},
        {"Live.2024.zip", "Live.2024/"},
        {"-x.zip", "-x/"},
        {".zip", "Audio/"},
        {"..zip", "Audio/"},
        {"...zip", "Audio/"},
        {"....zip", ".../"},
        {"Mix.zip.zip", "Mix.zip/"},
        {"Caf\xC3\xA9.zip", "Caf\xC3\xA9/"},
        {"\xE9.zip", "\xE9/"},
    };
    const fs::path file = write(folder / "music/01.mp3", "content");
    for (const Row& row : rows) {
        const fs::path archive = freshFolder() / row.destination;
        zipQuietly({file}, {}, archive);
        EXPECT_THAT(namesOf(archive), ElementsAre(row.folder, std::string(row.folder) + "01.mp3"))
            << row.destination;
    }
}

TEST_F(ZipperTest, AcceptsDestinationsWithTheLongestNames) {
    const fs::path file = write(folder / "01.mp3", "content");
    for (const std::string& name : {std::string(251, 'n') + ".zip", std::string(255, 'n')}) {
        const fs::path archive = folder / name;
        zipQuietly({file}, {}, archive);
        EXPECT_EQ(namesOf(archive).size(), 2U);
    }
}

TEST_F(ZipperTest, ReplacesAnOldArchive) {
    write(destination, "old");
    zipQuietly({write(folder / "01.mp3", "new")}, {}, destination);
    EXPECT_THAT(unpacked(destination), ElementsAre(Pair("Mix/01.mp3", "new")));
}

TEST_F(ZipperTest, ReplacesALinkAndNotWhatItPointsTo) {
    const fs::path target = write(folder / "target", "target");
    fs::create_symlink(target, destination);
    zipQuietly({write(folder / "01.mp3", "new")}, {}, destination);
    EXPECT_EQ(read(target), "target");
    EXPECT_FALSE(fs::is_symlink(destination));
    EXPECT_THAT(unpacked(destination), ElementsAre(Pair("Mix/01.mp3", "new")));
}

TEST_F(ZipperTest, ReplacesAPackedFileWithTheArchiveThatHoldsIt) {
    const fs::path first = write(folder / "01.mp3", "first");
    const fs::path second = write(folder / "02.mp3", "second");
    zipQuietly({first, second}, {folder}, first);
    EXPECT_THAT(unpacked(first), ElementsAre(Pair("01/01.mp3", "first"), Pair("01/02.mp3", "second")));
    EXPECT_EQ(read(second), "second");
}

TEST_F(ZipperTest, LeavesTheSourcesAsTheyAre) {
    const fs::path file = write(folder / "01.mp3", "content");
    ASSERT_EQ(::chmod(file.c_str(), 0400), 0);

    struct stat before {};

    ASSERT_EQ(::stat(file.c_str(), &before), 0);
    zipQuietly({file}, {folder}, destination);

    struct stat after {};

    ASSERT_EQ(::stat(file.c_str(), &after), 0);
    EXPECT_EQ(read(file), "content");
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
}

TEST_F(ZipperTest, PacksWhatALinkPointsTo) {
    const fs::path target = write(folder / "elsewhere/song.mp3", "song");
    const fs::path link = folder / "music/link.mp3";
    fs::create_directories(link.parent_path());
    fs::create_symlink(target, link);
    zipQuietly({link}, {folder / "music"}, destination);
    EXPECT_THAT(unpacked(destination), ElementsAre(Pair("Mix/link.mp3", "song")));
    EXPECT_EQ(entriesOf(destination).back().mode, unsigned{S_IFREG | 0644});
}

TEST_F(ZipperTest, CopiesTheArchiveToAnotherFileSystem) {
    std::string other = "/dev/shm/test-velmora-XXXXXX";
    ASSERT_NE(::mkdtemp(other.data()), nullptr);

    struct stat here {};

    struct stat there {};

    ASSERT_EQ(::stat(folder.c_str(), &here), 0);
    ASSERT_EQ(::stat(other.c_str(), &there), 0);
    EXPECT_NE(here.st_dev, there.st_dev) << "the temporary directory has to be on another file system";
    const fs::path archive = write(fs::path(other) / "Mix.zip", "old");
    zipQuietly({write(folder / "01.mp3", "new")}, {}, archive);
    EXPECT_THAT(unpacked(archive), ElementsAre(Pair("Mix/01.mp3", "new")));
    EXPECT_EQ(namesIn(other).size(), 1U);
    const mode_t mask = ::umask(0);
    ::umask(mask);
    EXPECT_EQ(static_cast<unsigned>(fs::status(archive).permissions()), 0666U & ~mask);
    fs::remove_all(other);
}

TEST_F(ZipperTest, MakesAnArchiveOfNothing) {
    zipQuietly({}, {}, destination);
    EXPECT_THAT(namesOf(destination), ElementsAre("Mix/"));
}

} // namespace

} // namespace velmora::test
