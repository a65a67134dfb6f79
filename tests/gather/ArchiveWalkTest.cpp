#include "gather/SourceWalker.h"
#include "records/AudioExtensions.h"
#include "tests/gather/Found.h"
#include "tests/support/Archives.h"
#include "tests/support/ForkedProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <thread>

namespace velmora {

namespace {

using test::compress;
using test::freshFolder;
using test::namesIn;
using test::pack;
using test::sound;
using test::walked;
using test::write;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

/// A zip around a zip around ... around an audio file, `levels` archives in all.
fs::path nestedZip(int levels) {
    fs::path folder = freshFolder();
    write(folder / "track.wav", sound);
    for (int i = 0; i < levels; ++i) {
        const fs::path outer = freshFolder();
        pack(outer / ("level" + std::to_string(levels - 1 - i) + ".zip"), folder);
        folder = outer;
    }
    return folder / "level0.zip";
}

TEST(ArchiveWalk, FindsAudioInAnArchive) {
    const fs::path content = freshFolder();
    for (const char* name : {"Disc 1/01.wav", "Disc 1/notes.txt", ".hidden.wav", "._01.wav", "cover.jpg"}) {
        write(content / name, sound);
    }
    const fs::path archive = pack(freshFolder() / "set.zip", content);
    const GatherResult found = walked(archive);
    EXPECT_THAT(namesIn(found, {}), ElementsAre("[0]/Disc 1/01.wav"));
    EXPECT_THAT(found.archives, ElementsAre(archive));
    EXPECT_THAT(found.temps, SizeIs(1));
    EXPECT_THAT(found.skippedArchives, IsEmpty());
}

TEST(ArchiveWalk, OpensThreeLevelsOfArchives) {
    const GatherResult found = walked(nestedZip(3));
    EXPECT_THAT(namesIn(found, {}), ElementsAre("[2]/track.wav"));
    EXPECT_THAT(found.archives,
                ElementsAre(testing::_, found.temps.at(0) / "level1.zip", found.temps.at(1) / "level2.zip"));
    EXPECT_THAT(found.skippedArchives, IsEmpty());
}

TEST(ArchiveWalk, CountsTheFourthLevelWithoutOpeningIt) {
    const GatherResult found = walked(nestedZip(4));
    EXPECT_THAT(found.files, IsEmpty());
    EXPECT_THAT(found.temps, SizeIs(3));
    EXPECT_THAT(found.skippedArchives,
                ElementsAre(SkippedArchive{found.temps.at(2) / "level3.zip", Reason::tooDeep}));
}

TEST(ArchiveWalk, FoldersDoNotCountAsLevels) {
    const fs::path folder = freshFolder();
    fs::create_directories(folder / "a" / "b" / "c" / "d");
    fs::rename(nestedZip(3), folder / "a" / "b" / "c" / "d" / "set.zip");
    EXPECT_THAT(namesIn(walked(folder), folder), ElementsAre("[2]/track.wav"));
}

TEST(ArchiveWalk, BeginsAtTheLevelItIsTold) {
    const fs::path archive = nestedZip(1);
    EXPECT_THAT(namesIn(walked(archive, 2), {}), ElementsAre("[0]/track.wav"));
    const GatherResult tooDeep = walked(archive, 3);
    EXPECT_THAT(tooDeep.skippedArchives, ElementsAre(SkippedArchive{archive, Reason::tooDeep}));
    EXPECT_THAT(tooDeep.temps, IsEmpty());
}

TEST(ArchiveWalk, SkipsAnArchiveThatCannotBeUnpacked) {
    const fs::path folder = freshFolder();
    write(folder / "a.wav");
    write(folder / "broken.zip", "no archive at all");
    write(folder / "broken.7z", sound);
    const GatherResult found = walked(folder);
    EXPECT_THAT(namesIn(found, folder), ElementsAre("a.wav"));
    EXPECT_THAT(found.skippedArchives,
                testing::UnorderedElementsAre(SkippedArchive{folder / "broken.zip", Reason::noTool},
                                              SkippedArchive{folder / "broken.7z", Reason::noTool}));
    EXPECT_THAT(found.temps, IsEmpty());
    EXPECT_THAT(test::temporaryItems(), IsEmpty());
}

TEST(ArchiveWalk, KeepsOneDirectoryForEachArchiveEvenWithoutAudio) {
    const fs::path content = freshFolder();
    write(content / "notes.txt");
    const GatherResult found = walked(pack(freshFolder() / "notes.zip", content));
    EXPECT_THAT(found.files, IsEmpty());
    EXPECT_THAT(found.skippedArchives, IsEmpty());
    EXPECT_THAT(found.temps, SizeIs(1));
    EXPECT_THAT(test::temporaryItems(), ElementsAre(found.temps.at(0).filename().native()));
}

TEST(ArchiveWalk, FindsWhatOtherKindsOfArchivesHold) {
    const fs::path content = freshFolder();
    write(content / "b.flac", sound);
    compress(content / "c.wav.gz", sound);
    const fs::path folder = freshFolder();
    pack(folder / "set.tar.gz", content);
    const GatherResult found = walked(folder);
    EXPECT_THAT(namesIn(found, folder), ElementsAre("[0]/b.flac", "[1]/c.wav"));
}

TEST(ArchiveWalk, FindsWhatIsUnpackedOnceThoughTheTemporaryDirectoryIsWalked) {
    const fs::path home = freshFolder();
    for (const char* name : {"a.zip", "z.zip", "tmp/b.zip", "tmp/sub/c.zip"}) {
        fs::create_directories((home / name).parent_path());
        fs::rename(nestedZip(3), home / name);
    }
    ::setenv("TMPDIR", (home / "tmp").c_str(), 1);
    const GatherResult found = walked(home);
    EXPECT_THAT(found.files, SizeIs(4));
    EXPECT_THAT(found.temps, SizeIs(12));
    EXPECT_THAT(found.skippedArchives, IsEmpty());
}

TEST(ArchiveWalk, CountsAnArchiveOfNothingAsSkipped) {
    const fs::path folder = freshFolder();
    for (const std::string_view extension : Collector::archiveExts) {
        write(folder / ("failed download." + std::string(extension)));
    }
    const std::vector<SkippedArchive> skipped = walked(folder).skippedArchives;
    EXPECT_THAT(skipped, SizeIs(Collector::archiveExts.size()));
    EXPECT_THAT(skipped, testing::Each(testing::Field(&SkippedArchive::why, Reason::empty)));
    EXPECT_THAT(test::temporaryItems(), IsEmpty());
}

TEST(ArchiveWalk, FollowsLinksToArchives) {
    const fs::path folder = freshFolder();
    fs::rename(nestedZip(1), folder / "data");
    fs::create_directory(folder / "walked");
    fs::create_symlink("../data", folder / "walked" / "set.zip");
    fs::create_symlink("nowhere", folder / "walked" / "dangling.zip");
    const GatherResult found = walked(folder / "walked");
    EXPECT_THAT(namesIn(found, {}), ElementsAre("[0]/track.wav"));
    EXPECT_THAT(found.archives, ElementsAre(folder / "walked" / "set.zip"));
    EXPECT_THAT(found.skippedArchives,
                ElementsAre(SkippedArchive{folder / "walked" / "dangling.zip", Reason::gone}));
}

TEST(ArchiveWalk, SkipsAFifoAtOnce) {
    const fs::path folder = freshFolder();
    ASSERT_EQ(::mkfifo((folder / "fifo.zip").c_str(), 0600), 0);
    const SkippedArchive fifo{folder / "fifo.zip", Reason::notRegular};
    EXPECT_THAT(walked(folder).skippedArchives, ElementsAre(fifo));
    EXPECT_THAT(walked(fifo.path).skippedArchives, ElementsAre(fifo));
}

TEST(ArchiveWalk, SkipsAnArchiveThatMayNotBeRead) {
    test::asOrdinaryUser([] {
        const fs::path archive = nestedZip(1);
        fs::permissions(archive, fs::perms(0));
        EXPECT_THAT(walked(archive).skippedArchives,
                    ElementsAre(SkippedArchive{archive, Reason::permissionDenied}));
        EXPECT_THAT(test::temporaryItems(), IsEmpty());
    });
}

TEST(ArchiveWalk, FindsWhatAnArchiveLocksAway) {
    test::asOrdinaryUser([] {
        const fs::path archive = freshFolder() / "set.tar";
        write(archive, test::tarArchive({{.name = "closed/", .type = '5', .mode = 0},
                                         {.name = "closed/inner/", .type = '5', .mode = 0},
                                         {.name = "closed/inner/a.wav", .content = sound, .mode = 0}}));
        const GatherResult found = walked(archive);
        EXPECT_THAT(namesIn(found, {}), ElementsAre("[0]/closed/inner/a.wav"));
        EXPECT_EQ(test::read(found.files.at(0)), sound);
    });
}

TEST(ArchiveWalk, KeepsNamesFromArchives) {
    const fs::path content = freshFolder();
    const std::vector<std::string> names = test::awkwardNames();
    for (const std::string& name : names) {
        write(content / name, sound);
    }
    const GatherResult found = walked(pack(freshFolder() / "set.tar", content));
    EXPECT_EQ(test::filesBelow(found.temps.at(0)), names);
    EXPECT_EQ(found.files.size(), names.size());
}

TEST(ArchiveWalk, UnpacksArchivesOfAnyName) {
    const fs::path content = freshFolder();
    write(content / "a.wav", sound);
    const fs::path plain = pack(freshFolder() / "plain.tar", content);
    for (std::string name : test::awkwardNames()) {
        name.replace(name.size() - 3, 3, "tar");
        const fs::path archive = freshFolder() / name;
        fs::copy_file(plain, archive);
        const GatherResult found = walked(archive);
        EXPECT_THAT(namesIn(found, {}), ElementsAre("[0]/a.wav")) << name;
        EXPECT_THAT(found.archives, ElementsAre(archive));
    }
}

TEST(ArchiveWalk, StopsInTheMiddleOfAFolder) {
    const fs::path folder = freshFolder();
    test::slowArchive(folder);
    write(folder / "sub" / "later.zip", "x"); // folders come after what else there is
    std::stop_source stop;
    GatherResult found;
    std::thread walking([&] { Collector::walk(folder, 0, found, stop.get_token()); });
    while (test::temporaryItems().empty()) {
        std::this_thread::yield();
    }
    stop.request_stop();
    walking.join();
    EXPECT_THAT(found.files, IsEmpty());
    EXPECT_THAT(found.skippedArchives, ElementsAre(SkippedArchive{folder / "slow.tar.xz", Reason::stopped}));
    EXPECT_THAT(test::temporaryItems(), IsEmpty());
}

TEST(ArchiveWalk, StopsBetweenArchives) {
    std::stop_source stop;
    stop.request_stop();
    GatherResult found;
    Collector::walk(nestedZip(1), 0, found, stop.get_token());
    EXPECT_EQ(found, GatherResult());
    EXPECT_THAT(test::temporaryItems(), IsEmpty());
}

} // namespace

} // namespace velmora
