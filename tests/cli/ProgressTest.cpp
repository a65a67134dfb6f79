#include "cli/Progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(ProgressLine, ShowsCountsAndABar) {
    EXPECT_EQ(progressLine("MEASURING", Advance{12, 48}, 80, Colour::off),
              "MEASURING 12 / 48  [##########------------------------------]");
}

TEST(ProgressLine, CountsBytesInTheUnitOfTheirTotal) {
    const auto line = [](std::int64_t done, std::int64_t total) {
        return progressLine("CHECKING", Advance{done, total, Unit::bytes}, 30, Colour::off);
    };
    EXPECT_THAT(line(1'250'000'000, 3'400'000'000), testing::StartsWith("CHECKING 1.2 / 3.4 GB"));
    EXPECT_THAT(line(0, 999'999), testing::StartsWith("CHECKING 0.0 / 999.9 KB"));
    EXPECT_THAT(line(1'000'000, 1'000'000), testing::StartsWith("CHECKING 1.0 / 1.0 MB"));
    EXPECT_THAT(line(0, 0), testing::StartsWith("CHECKING 0.0 / 0.0 KB"));
    EXPECT_THAT(line(0, 9'000'000'000'000'000), testing::StartsWith("CHECKING 0.0 / 9000.0 TB"));
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
