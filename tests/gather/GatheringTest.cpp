#include "gather/Gathering.h"

#include "system/Paths.h"
#include "tests/gather/Found.h"
#include "tests/support/Archives.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace velmora {

namespace {

using Collector::gather;
using test::freshFolder;
using test::pack;
using test::write;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

TEST(Gathering, PutsDroppedFilesBeforeTheContentOfArchives) {
    const fs::path folder = freshFolder();
    write(folder / "b" / "10.wav");
    write(folder / "b" / "2.wav");
    const fs::path content = freshFolder();
    write(content / "x.wav");
    pack(folder / "a.zip", content);
    const GatherResult found = gather({folder / "a.zip", folder / "b"});
    EXPECT_THAT(found.files,
                ElementsAre(folder / "b/2.wav", folder / "b/10.wav", found.temps.at(0) / "x.wav"));
    EXPECT_THAT(found.archives, ElementsAre(folder / "a.zip"));
}

TEST(Gathering, FindsAnItemAsOftenAsItWasDropped) {
    const fs::path file = write(freshFolder() / "a.wav");
    EXPECT_THAT(gather({file, file.parent_path(), file / "missing"}).files, ElementsAre(file, file));
}

TEST(Gathering, FindsNothingInNothing) {
    EXPECT_EQ(gather({}), GatherResult());
    EXPECT_EQ(gather({freshFolder()}), GatherResult());
}

TEST(Gathering, SkippedArchivesComeInTheOrderTheyWereMet) {
    const fs::path folder = freshFolder();
    const fs::path second = write(folder / "b.zip", "broken");
    const fs::path first = write(folder / "a.zip", "broken");
    EXPECT_THAT(gather({second, first}).skippedArchives,
                ElementsAre(SkippedArchive{second, Reason::noTool}, SkippedArchive{first, Reason::noTool}));
}

TEST(Gathering, TellsWhichArchiveIsBeingUnpacked) {
    const fs::path folder = freshFolder();
    const fs::path content = freshFolder();
    write(content / "x.wav");
    pack(folder / "a.zip", content);
    const fs::path broken = write(folder / "b.zip", "broken");
    Paths told;
    gather({folder / "a.zip", broken, write(folder / "c.wav")}, {},
           [&](const fs::path& archive) { told.push_back(archive); });
    EXPECT_THAT(told, ElementsAre(folder / "a.zip", "", broken, ""));
}

TEST(Gathering, EndsEarlyWhenAsked) {
    std::stop_source stop;
    stop.request_stop();
    const fs::path folder = freshFolder();
    write(folder / "a.wav");
    EXPECT_EQ(gather({folder}, stop.get_token()), GatherResult());
    EXPECT_THAT(test::temporaryItems(), IsEmpty());
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // these keep books in the memory measured

/// The most memory that the process ever had, in bytes.
std::int64_t peakMemory() {
    std::ifstream status("/proc/self/status");
    std::string word;
    std::int64_t kilobytes = 0;
    while (status >> word && word != "VmHWM:") {
    }
    status >> kilobytes;
    return kilobytes * 1024;
}

TEST(Gathering, NeedsLessThanAKilobyteAFile) {
    constexpr int folders = 50;
    constexpr int filesEach = 20;
    constexpr int drops = 100;
    constexpr std::size_t files = std::size_t{folders} * filesEach * drops;
    const fs::path library = freshFolder();
    for (int i = 0; i < folders; ++i) {
        const fs::path album = library / "Artist with a name" / ("Album " + std::to_string(i));
        for (int j = 0; j < filesEach; ++j) {
            write(album / (std::to_string(j) + " - Title of the track.flac"));
        }
    }
    const std::int64_t before = peakMemory();
    const GatherResult found = gather(Paths(drops, library));
    const std::int64_t perFile = (peakMemory() - before) / static_cast<std::int64_t>(files);
    EXPECT_EQ(found.files.size(), files);
    EXPECT_LT(perFile, 1024);
    RecordProperty("bytesPerFile", std::to_string(perFile));
}

#endif

} // namespace

} // namespace velmora
