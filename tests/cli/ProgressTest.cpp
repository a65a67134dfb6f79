#include "cli/Progress.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(ProgressLine, ShowsCountsAndABar) {
    EXPECT_EQ(progressLine("MEASURING", Advance{12, 48}, 80, Colour::off),
              "MEASURING 12 / 48  [##########------------------------------]");
}

TEST(ProgressLine, ShowsAStageWithoutCountsByNameAlone) {
    EXPECT_EQ(progressLine("READING SOURCE", std::nullopt, 80, Colour::on), "READING SOURCE");
}

TEST(ProgressLine, IsAllBlankAtTheStartAndAllFullAtTheEnd) {
    EXPECT_EQ(progressLine("ZIPPING", Advance{0, 9}, 30, Colour::off), "ZIPPING 0 / 9  [------------]");
    EXPECT_EQ(progressLine("ZIPPING", Advance{9, 9}, 30, Colour::off), "ZIPPING 9 / 9  [############]");
}

TEST(ProgressLine, ColoursOnlyTheFullPart) {
    EXPECT_EQ(progressLine("Z", Advance{1, 2}, 20, Colour::on), "Z 1 / 2  [\x1b[96m####\x1b[0m----]");
}

TEST(ProgressLine, NeverReachesTheLastColumn) {
    const std::string all = "MEASURING 31 / 48";
    for (int columns = 0; columns < 100; ++columns) {
        const std::string line = progressLine("MEASURING", Advance{31, 48}, columns, Colour::off);
        EXPECT_LE(static_cast<int>(line.size()), std::max(columns - 1, 0));
        EXPECT_EQ(line.substr(0, all.size()), all.substr(0, line.size()));
    }
}

TEST(ProgressLine, LeavesTheBarOutWhereItWouldSayNothing) {
    EXPECT_EQ(progressLine("MEASURING", Advance{31, 48}, 30, Colour::off), "MEASURING 31 / 48  [#####---]");
    EXPECT_EQ(progressLine("MEASURING", Advance{31, 48}, 29, Colour::off), "MEASURING 31 / 48");
    EXPECT_EQ(progressLine("MEASURING", Advance{31, 48}, 10, Colour::off), "MEASURING");
}

TEST(ProgressLine, KeepsTheBarInItsFrameWhateverTheCounts) {
    EXPECT_EQ(progressLine("Z", Advance{7, 2}, 20, Colour::off), "Z 7 / 2  [########]");
    EXPECT_EQ(progressLine("Z", Advance{0, 0}, 20, Colour::off), "Z 0 / 0  [--------]");
}

} // namespace
} // namespace velmora
