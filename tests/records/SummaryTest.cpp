#include "records/Summary.h"

#include "system/Paths.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(Summary, TalliesFormatsByUpperCaseExtensionLongestFirst) {
    const ScanSummary summary =
        summarize({{"/m/a.mp3", 100, 10}, {"/m/b.MP3", 50, 20}, {"/m/c.flac", 120, 30}});

    EXPECT_EQ(summary.formats, (std::vector<FormatStat>{{"MP3", 2, 150}, {"FLAC", 1, 120}}));
    EXPECT_EQ(summary.seconds, 270);
    EXPECT_EQ(summary.fileCount, 3);
    EXPECT_EQ(summary.bytes, 60);
    EXPECT_EQ(summary.longestName, "c.flac");
    EXPECT_EQ(summary.longestSeconds, 120);
    EXPECT_EQ(summary.unreadable, 0);
}

TEST(Summary, NamesTheFirstOfEquallyLongFiles) {
    EXPECT_EQ(summarize({{"/m/1.wav", 200, 1}, {"/m/2.wav", 200, 1}}).longestName, "1.wav");
}

TEST(Summary, CountsFilesOfNoLengthButNeverCallsThemLongest) {
    const ScanSummary summary = summarize({{"/m/1.wav", 0, 5}, {"/m/2.wav", 0, 6}});

    EXPECT_EQ(summary.fileCount, 2);
    EXPECT_EQ(summary.seconds, 0);
    EXPECT_EQ(summary.longestName, "");
    EXPECT_EQ(summary.longestSeconds, 0);
}

TEST(Summary, LeavesUnmeasuredFilesOutOfEveryTotal) {
    const ScanSummary summary =
        summarize({{"/m/bad.mp3", -1, 900}, {"/m/good.ogg", 2, 7}, {"/m/worse.ogg", -0.5, 800}});

    EXPECT_EQ(summary.unreadable, 2);
    EXPECT_EQ(summary.bytes, 7);
    EXPECT_EQ(summary.files, (Paths{"/m/good.ogg"}));
    EXPECT_EQ(summary.formats, (std::vector<FormatStat>{{"OGG", 1, 2}}));
}

TEST(Summary, CountsAFileTwiceThatStandsInTheListTwice) {
    const ScanSummary summary = summarize({{"/m/a.wav", 3, 5}, {"/m/a.wav", 3, 5}});

    EXPECT_EQ(summary.fileCount, 2);
    EXPECT_EQ(summary.seconds, 6);
    EXPECT_EQ(summary.bytes, 10);
}

TEST(Summary, OrdersFormatsOfEqualLengthByTheirKey) {
    const ScanSummary summary = summarize({{"/m/a.wav", 3, 5}, {"/m/noext", 3, 5}, {"/m/a.aac", 3, 5}});

    EXPECT_EQ(summary.formats, (std::vector<FormatStat>{{"", 1, 3}, {"AAC", 1, 3}, {"WAV", 1, 3}}));
}

} // namespace
} // namespace velmora::test
