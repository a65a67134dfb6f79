#include "gather/ExtractionPlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {

namespace {

using Collector::extractionPlan;
using Collector::ExtractionStep;
using Collector::Ground;
using Collector::UnzipTurn;
using testing::ElementsAre;
namespace fs = std::filesystem;

/// The names of the tools of the plan for an archive called `name`, of which a copy was made.
std::vector<std::string> toolsFor(const std::string& name, UnzipTurn unzip = UnzipTurn::asUsual) {
    std::vector<std::string> names;
    for (const ExtractionStep& step :
         extractionPlan("/music/" + name, "/tmp/copy-" + name, "/tmp/out", unzip)) {
        names.push_back(fs::path(step.tool).filename());
    }
    return names;
}

TEST(ExtractionPlan, GivesEachToolItsArguments) {
    EXPECT_THAT(
        extractionPlan("/music/Song.ZIP", "/tmp/copy-Song.ZIP", "/tmp/out", UnzipTurn::asUsual),
        ElementsAre(
            ExtractionStep{"/usr/bin/ditto", {"-x", "-k", "--noqtn", "/tmp/copy-Song.ZIP", "/tmp/out"}, {}},
            ExtractionStep{"/usr/bin/tar", {"-x", "-f", "/tmp/copy-Song.ZIP", "-C", "/tmp/out"}, {}},
            ExtractionStep{"/usr/bin/unzip", {"-qq", "-o", "/tmp/copy-Song.ZIP", "-d", "/tmp/out"}, {}},
            ExtractionStep{
                "/usr/bin/bsdtar", {"-x", "-f", "/tmp/copy-Song.ZIP", "-C", "/tmp/out"}, {}, Ground::empty}));
}

TEST(ExtractionPlan, WritesASingleFileUnderTheNameOfTheArchiveWithoutItsExtension) {
    EXPECT_THAT(
        extractionPlan("/music/take.wav.gz", "/tmp/copy-take.wav.gz", "/tmp/out", UnzipTurn::asUsual).at(2),
        (ExtractionStep{"/usr/bin/gunzip", {"-c", "/tmp/copy-take.wav.gz"}, "/tmp/out/take.wav"}));
    EXPECT_THAT(
        extractionPlan("/music/take.wav.BZ2", "/tmp/copy-take.wav.BZ2", "/tmp/out", UnzipTurn::asUsual).at(2),
        (ExtractionStep{"/usr/bin/bunzip2", {"-c", "/tmp/copy-take.wav.BZ2"}, "/tmp/out/take.wav"}));
}

TEST(ExtractionPlan, ChoosesToolsByTheExtension) {
    const auto zip = ElementsAre("ditto", "tar", "unzip", "bsdtar");
    const auto gzip = ElementsAre("tar", "unzip", "gunzip", "bsdtar");
    const auto bzip2 = ElementsAre("tar", "unzip", "bunzip2", "bsdtar");
    const auto others = ElementsAre("tar", "unzip", "bsdtar");

    for (const char* name : {"Song.ZIP", "song.zip", "song.zipx", "song.tar.zip"}) {
        EXPECT_THAT(toolsFor(name), zip) << name;
    }
    EXPECT_THAT(toolsFor("song.tar.gz"), gzip);
    EXPECT_THAT(toolsFor("take.wav.bz2"), bzip2);
    for (const char* name : {"song.tar", "song.tgz", "song.tbz", "song.tbz2", "song.txz", "song.xz",
                             "song.7z", "song.rar", ".gz", ".bz2"}) {
        EXPECT_THAT(toolsFor(name), others) << name;
    }
}

TEST(ExtractionPlan, LetsUnzipBeTheLast) {
    EXPECT_THAT(toolsFor("song.zip", UnzipTurn::last), ElementsAre("ditto", "tar", "bsdtar", "unzip"));
    EXPECT_THAT(toolsFor("song.gz", UnzipTurn::last), ElementsAre("tar", "gunzip", "bsdtar", "unzip"));
}

TEST(ExtractionPlan, MixesNothingWithWhatTheRequiredToolsMade) {
    const auto emptied = [](UnzipTurn unzip) {
        std::vector<std::string> tools;
        for (const ExtractionStep& step : extractionPlan("/music/a.zip", "/tmp/a.zip", "/tmp/out", unzip)) {
            if (step.ground == Ground::empty) {
                tools.push_back(fs::path(step.tool).filename());
            }
        }
        return tools;
    };
    EXPECT_THAT(emptied(UnzipTurn::asUsual), ElementsAre("bsdtar"));
    EXPECT_THAT(emptied(UnzipTurn::last), ElementsAre("bsdtar", "unzip"));
}

TEST(ExtractionPlan, KeepsPatternsFromUnzipWhenThereIsNoCopy) {
    const auto steps = [](const fs::path& input, UnzipTurn unzip) {
        return extractionPlan("/music/a[b]*?.7z", input, "/tmp/out", unzip).size();
    };
    for (const UnzipTurn unzip : {UnzipTurn::asUsual, UnzipTurn::last}) {
        EXPECT_EQ(steps("/music/a[b]*?.7z", unzip), 2U);
        EXPECT_EQ(steps("/tmp/copy-a[b]*?.7z", unzip), 3U);
    }
    for (const char* name : {"/music/a[b].7z", "/music/a*.7z", "/music/a?.7z", "/mu[s]ic/a.7z"}) {
        EXPECT_EQ(extractionPlan(name, name, "/tmp/out", UnzipTurn::asUsual).size(), 2U) << name;
    }
    EXPECT_EQ(extractionPlan("/music/a.7z", "/music/a.7z", "/tmp/out", UnzipTurn::asUsual).size(), 3U);
}

} // namespace

} // namespace velmora
