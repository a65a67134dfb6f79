// What a list of paths costs: as much memory as the folder that holds the same files.

#include "tests/cli/PeakMemory.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace velmora::test {
namespace {

TEST(ListMemory, IsThatOfTheFolder) {
    const fs::path folder = freshFolder();
    const fs::path track = writeWav(folder / "track.wav", {.frames = 100, .rate = 8'000, .channels = 1});
    const fs::path library = folder / "A library/An artist/An album";
    fs::create_directories(library);
    std::ofstream list(folder / "list");
    for (int i = 0; i < 20'000; ++i) {
        const fs::path name = library / ("Track number " + std::to_string(i) + ".wav");
        fs::create_hard_link(track, name);
        list << name.native() << '\0';
    }
    list.close();
    const double ofFolder = peak("'A library'", folder);
    const double ofList = peak("-0 list", folder);
    EXPECT_LT(ofList, 1.05 * ofFolder); // each name once more, as far as it differs from the one before
    RecordProperty("folder", std::to_string(ofFolder));
    RecordProperty("list", std::to_string(ofList));
}

} // namespace
} // namespace velmora::test
