// Archives made to do harm: whatever they hold stays in the extraction directory, and nothing in them blocks
// or outlives the extraction.

#include "gather/ArchiveExtraction.h"
#include "system/RemoveTree.h"
#include "tests/gather/Found.h"
#include "tests/support/Archives.h"
#include "tests/support/ForkedProcess.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {

namespace {

using Collector::extract;
using test::filesBelow;
using test::freshFolder;
using test::Member;
using test::read;
using test::temporaryItems;
using test::walked;
using test::write;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

/// A folder that an archive aims at, with a file that must stay as it is.
class HostileArchive : public testing::Test {
protected:
    fs::path outside = freshFolder();
    fs::path victim = write(outside / "victim.wav", "untouched");
    fs::path folder = freshFolder();

    void TearDown() override {
        EXPECT_EQ(filesBelow(outside), std::vector<std::string>{"victim.wav"});
        EXPECT_EQ(read(victim), "untouched");
    }

    fs::path tar(const std::vector<Member>& members) const {
        return write(folder / "hostile.tar", test::tarArchive(members));
    }
};

TEST_F(HostileArchive, CannotWriteToAnAbsolutePath) {
    const std::string evil = outside / "evil.wav";
    for (const fs::path& archive :
         {tar({{.name = evil, .content = "x"}, {.name = victim, .content = "x"}}),
          write(folder / "hostile.zip", test::zipArchive({{.name = evil, .content = "x"}})),
          write(folder / "hostile.rar", test::rarArchive({{.name = evil, .content = "x"}}))}) {
        if (const auto directory = extract(archive).directory) {
            EXPECT_THAT(filesBelow(*directory), testing::Contains(evil.substr(1))) << archive;
        }
    }
}

TEST_F(HostileArchive, CannotClimbOutOfItsDirectory) {
    const std::string up = "../" + outside.lexically_relative(fs::temp_directory_path()).native();
    for (const fs::path& archive :
         {tar({{.name = up + "/evil.wav", .content = "x"}, {.name = "../evil.wav", .content = "x"}}),
          write(folder / "hostile.zip", test::zipArchive({{.name = up + "/evil.wav", .content = "x"},
                                                          {.name = "../evil.wav", .content = "x"}})),
          write(folder / "hostile.rar", test::rarArchive({{.name = "../evil.wav", .content = "x"}}))}) {
        extract(archive);
        EXPECT_FALSE(fs::exists(fs::temp_directory_path() / "evil.wav")) << archive;
    }
}

TEST_F(HostileArchive, CannotWriteThroughItsOwnLinks) {
    extract(tar({{.name = "link", .type = '2', .linkTarget = outside},
                 {.name = "link/evil.wav", .content = "x"},
                 {.name = "file", .type = '2', .linkTarget = victim},
                 {.name = "file", .content = "x"},
                 {.name = "hard", .type = '1', .linkTarget = "link/victim.wav"},
                 {.name = "hard", .content = "x"}}));
}

TEST_F(HostileArchive, CannotTurnADecompressedFileIntoAWriteThroughItsLink) {
    // tar leaves the link and fails on what follows; the attempt to decompress a single file writes where the
    // link is.
    test::Bytes bytes = test::tarArchive({{.name = "take.wav", .type = '2', .linkTarget = victim}});
    bytes.resize(512);
    bytes.resize(5120, 'x');
    const fs::path archive = test::compress(
        folder / "take.wav.gz", std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    const std::optional<fs::path> directory = extract(archive).directory;
    ASSERT_TRUE(directory);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(*directory / "take.wav")));
    EXPECT_EQ(fs::file_size(*directory / "take.wav"), bytes.size());
}

TEST_F(HostileArchive, CannotLeadTheWalkOutside) {
    const GatherResult found = walked(tar({{.name = "folder", .type = '2', .linkTarget = outside},
                                           {.name = "folder.zip", .type = '2', .linkTarget = outside},
                                           {.name = "up", .type = '2', .linkTarget = ".."},
                                           {.name = "a.wav", .content = "x"}}));
    EXPECT_THAT(test::namesIn(found, {}), ElementsAre("[0]/a.wav"));
    EXPECT_THAT(found.skippedArchives, IsEmpty());
}

TEST_F(HostileArchive, CannotHaveTheUsersFilesRead) {
    write(outside / "backup.zip", test::zipArchive({{.name = "private.wav", .content = "x"}}));
    const GatherResult found =
        walked(tar({{.name = "take 2.wav", .type = '2', .linkTarget = victim},
                    {.name = "more.zip", .type = '2', .linkTarget = outside / "backup.zip"},
                    {.name = "up", .type = '2', .linkTarget = ".."},
                    {.name = "a.wav", .content = "x"},
                    {.name = "again.wav", .type = '2', .linkTarget = "a.wav"}}));
    EXPECT_THAT(test::namesIn(found, {}), ElementsAre("[0]/a.wav", "[0]/again.wav"));
    EXPECT_THAT(found.skippedArchives, IsEmpty());
    EXPECT_THAT(found.temps, testing::SizeIs(1));
    fs::remove(outside / "backup.zip");
}

TEST_F(HostileArchive, LeavesNoFifoBesideItsSongs) {
    const GatherResult found = walked(tar({{.name = "a.wav", .content = "x"},
                                           {.name = "fifo.zip", .type = '6'},
                                           {.name = "fifo.wav", .type = '6'}}));
    EXPECT_THAT(test::namesIn(found, {}), ElementsAre("[0]/a.wav"));
    EXPECT_THAT(found.skippedArchives, IsEmpty());
    EXPECT_EQ(test::filesBelow(found.temps.at(0)), std::vector<std::string>{"a.wav"});
    removeTree(found.temps.at(0));
}

TEST_F(HostileArchive, CannotMakeDevices) {
    for (const char type : {'3', '4'}) {
        const fs::path archive = tar({{.name = "a.wav", .content = "x"}, {.name = "node.wav", .type = type}});
        const GatherResult found = walked(archive);
        EXPECT_THAT(found.skippedArchives, ElementsAre(SkippedArchive{archive, Reason::toolFailed})) << type;
        EXPECT_THAT(temporaryItems(), IsEmpty());
    }
}

TEST_F(HostileArchive, CannotLeaveWhatCannotBeRemoved) {
    std::vector<Member> members = {{.name = "closed/", .type = '5', .mode = 0}};
    std::string path = "closed/";
    for (int i = 0; i < 30; ++i) {
        path += "d/";
        members.push_back({.name = path, .type = '5', .mode = 0});
    }
    members.push_back({.name = path + "a.wav", .content = "x", .mode = 0});
    members.push_back({.name = "last.wav", .content = std::string(4000, 'x')});
    const test::Bytes bytes = test::tarArchive(members);
    test::asOrdinaryUser([&] {
        const fs::path archive = write(freshFolder() / "closed.tar", bytes);
        const std::optional<fs::path> directory = extract(archive).directory;
        ASSERT_TRUE(directory);
        removeTree(*directory);
        EXPECT_THAT(temporaryItems(), IsEmpty());
        fs::resize_file(archive, bytes.size() - 4000); // fails at the end, with everything unpacked
        EXPECT_EQ(extract(archive).directory, std::nullopt);
        EXPECT_THAT(temporaryItems(), IsEmpty());
    });
}

TEST_F(HostileArchive, CannotNestForEver) {
    const std::string archive = read(write(folder / "inner.gz", "\x1F\x8B")); // the header of a gzip, no more
    const GatherResult found = walked(tar({{.name = "a.tar", .content = archive}}));
    EXPECT_EQ(found.temps.size() + found.skippedArchives.size(), 2U);
}

} // namespace

} // namespace velmora
