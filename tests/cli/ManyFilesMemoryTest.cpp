// What a file costs of memory, however deep it lies and whatever is written about it.

#include "tests/cli/PeakMemory.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::test {
namespace {

constexpr int folders = 300;
constexpr int filesInFolder = 20;
constexpr int depth = 40;

/// Two branches of `depth` folders, at whose ends are `folders` of names for `track`.
void fill(const fs::path& top, const fs::path& track) {
    for (int i = 0; i < folders; ++i) {
        fs::path folder = top / (i % 2 == 0 ? "One" : "Other");
        for (int level = 0; level < depth; ++level) {
            folder /= "A folder of twenty-five " + std::to_string(level % 10);
        }
        folder /= "Album " + std::to_string(i);
        fs::create_directories(folder);
        for (int file = 0; file < filesInFolder; ++file) {
            fs::create_hard_link(track, folder / ("Track number " + std::to_string(file) + ".wav"));
        }
    }
}

TEST(ManyFilesMemory, IsBelow700BytesAFileInDeepFolders) {
    const fs::path folder = freshFolder();
    const fs::path track =
        writeWav(folder / "one" / "track.wav", {.frames = 100, .rate = 8'000, .channels = 1});
    fill(folder / "many", track);
    const double ofOne = peak("one", folder);
    for (const char* const report : {"", "--files ", "--json "}) {
        const double ofFile =
            (peak(report + std::string("many"), folder) - ofOne) * 1024 / (folders * filesInFolder);
        EXPECT_LT(ofFile, 700) << report;
        RecordProperty("bytes a file " + std::string(report), std::to_string(ofFile));
    }
}

} // namespace
} // namespace velmora::test
