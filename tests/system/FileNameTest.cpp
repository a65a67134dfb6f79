#include "system/FileName.h"

#include "tests/support/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace velmora {

namespace {

TEST(FileName, ExtensionIsWhatFollowsTheLastDotOfTheLastComponent) {
    struct Row {
        const char* name;
        const char* extension;
        const char* stem;
    };

    const std::vector<Row> rows = {
        {"track.WAV", "WAV", "track"},
        {"show.tar.gz", "gz", "show.tar"},
        {".mp3", "mp3", ""},
        {"notes", "", "notes"},
        {"end.", "", "end"},
        {"..gz", "gz", "."},
        {"...gz", "gz", ".."},
        {"", "", ""},
        {"Vol. 1/track", "", "Vol. 1/track"},
        {"Vol. 1/track.ogg", "ogg", "Vol. 1/track"},
        {"a.wav/", "", "a.wav/"},
        {"caf\xE9.\xC9", "\xC9", "caf\xE9"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(extensionOf(row.name), row.extension) << row.name;
        EXPECT_EQ(withoutExtension(row.name), row.stem) << row.name;
    }
}

TEST(FileName, LastComponentIgnoresSlashesAtTheEnd) {
    struct Row {
        const char* path;
        const char* name;
    };

    const std::vector<Row> rows = {
        {"/music/Album", "Album"},
        {"/music/Album/", "Album"},
        {"/music/Album//", "Album"},
        {"Album", "Album"},
        {"/", "/"},
        {"//", "/"},
        {"/x", "x"},
        {"", ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(lastComponent(row.path), row.name) << row.path;
    }
}

TEST(FileName, FilesAreClassifiedByTheirExtensionInLowerCase) {
    EXPECT_EQ(classifyingExtension("/music/TRACK.WAV"), "wav");
    EXPECT_EQ(classifyingExtension("/music/x.Flac"), "flac");
    EXPECT_EQ(classifyingExtension("/m.usic/x"), "");
    EXPECT_EQ(classifyingExtension("x.\xC3\x84"), "\xC3\xA4"); // Ä, ä
}

TEST(FileName, StandardizedPathsHaveNothingLeftToResolve) {
    struct Row {
        const char* path;
        const char* standardized;
    };

    const std::vector<Row> rows = {
        {"/a/b", "/a/b"},     {"/a/b/", "/a/b"},          {"/a//b", "/a/b"},
        {"//a", "/a"},        {"/a/./b", "/a/b"},         {"/a/../b", "/b"},
        {"/a/b/..", "/a"},    {"/a/b/.", "/a/b"},         {"/a/.hidden", "/a/.hidden"},
        {"/a/..b", "/a/..b"}, {"/a/b./c..", "/a/b./c.."}, {"/", "/"},
        {"/..", "/"},         {"/a\xE9/./b", "/a\xE9/b"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(standardized(row.path), row.standardized) << row.path;
    }
}

TEST(FileName, ParentFoldersAreListedFromTheOutermost) {
    EXPECT_THAT(parentFolders("/music/Album/01.wav"), testing::ElementsAre("", "/music", "/music/Album"));
    EXPECT_THAT(parentFolders("Album/01.wav"), testing::ElementsAre("Album"));
    EXPECT_THAT(parentFolders("01.wav"), testing::IsEmpty());
}

TEST(FileName, RelativePathsAreStandardizedFromTheWorkingDirectory) {
    EXPECT_EQ(standardized("x/../y.wav"), (std::filesystem::current_path() / "y.wav").native());
}

TEST(AbsolutePath, ResolvesDotsWhereThatLeadsToTheSamePlace) {
    const std::filesystem::path folder = test::freshFolder();
    test::write(folder / "elsewhere" / "inner" / "x.wav");
    std::filesystem::create_directory_symlink("elsewhere/inner", folder / "link");

    EXPECT_EQ(absolutePath(folder / "elsewhere" / "inner" / ".." / "."), folder / "elsewhere");
    EXPECT_EQ(absolutePath(folder / "link" / "x.wav" / ""), folder / "link" / "x.wav");
    EXPECT_EQ(absolutePath("/" + (folder / "link").native()).native(), (folder / "link").native());
    EXPECT_EQ(absolutePath(folder / "link" / ".."), folder / "link" / "..") << "this is elsewhere/";
    EXPECT_EQ(absolutePath(folder / "not" / ".." / "made.zip"), folder / "made.zip");
}

} // namespace

} // namespace velmora
