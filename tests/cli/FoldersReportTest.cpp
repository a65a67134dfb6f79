#include "cli/Options.h"
#include "tests/cli/ReportText.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

ScanDetails detailsOf(std::vector<Measured> files) {
    ScanDetails details;
    details.files = std::move(files);
    return details;
}

TEST(FoldersReport, AddsUpTheTree) {
    const ScanDetails details = detailsOf({{"/m/A/1.wav", 1},
                                           {"/m/A/Disc 1/2.wav", 2},
                                           {"/m/A/Disc 2/3.wav", 4},
                                           {"/m/B/4.wav", 8},
                                           {"/m/5.wav", 16}});
    EXPECT_EQ(foldersReport(details, {"/m"}, allLevels, 1), "31.000\t5\t/m\n"
                                                            "7.000\t3\t/m/A\n"
                                                            "2.000\t1\t/m/A/Disc 1\n"
                                                            "4.000\t1\t/m/A/Disc 2\n"
                                                            "8.000\t1\t/m/B\n");
}

TEST(FoldersReport, KeepsTheOrderOfTheScanAndEachFolderTogether) {
    // As the scan sorts: case does not count, so the files of two folders take turns.
    const ScanDetails details = detailsOf(
        {{"/m/b/1.wav", 1}, {"/m/B/2.wav", 2}, {"/m/b/x/3.wav", 4}, {"/m/B/x/4.wav", 8}, {"/m/a/5.wav", 16}});
    EXPECT_EQ(foldersReport(details, {"/m"}, allLevels, 1), "31.000\t5\t/m\n"
                                                            "5.000\t2\t/m/b\n"
                                                            "4.000\t1\t/m/b/x\n"
                                                            "10.000\t2\t/m/B\n"
                                                            "8.000\t1\t/m/B/x\n"
                                                            "16.000\t1\t/m/a\n");
}

TEST(FoldersReport, EndsAtTheDepthBelowEachSource) {
    const ScanDetails details = detailsOf({{"/m/A/x/y/1.wav", 1}, {"/n/B/2.wav", 2}});
    EXPECT_EQ(foldersReport(details, {"/m/A", "/n"}, 0, 1), "1.000\t1\t/m/A\n2.000\t1\t/n\n");
    EXPECT_EQ(foldersReport(details, {"/m/A", "/n"}, 1, 1),
              "1.000\t1\t/m/A\n1.000\t1\t/m/A/x\n2.000\t1\t/n\n2.000\t1\t/n/B\n");
}

TEST(FoldersReport, CountsASourceInAnotherInBoth) {
    const ScanDetails details = detailsOf({{"/m/A/x/1.wav", 1}, {"/m/A/x/1.wav", 1}, {"/m/2.wav", 2}});
    EXPECT_EQ(foldersReport(details, {"/m", "/m/A/x"}, 0, 1), "4.000\t3\t/m\n2.000\t2\t/m/A/x\n");
}

TEST(FoldersReport, TakesTheFolderOfAFileThatWasGiven) {
    const ScanDetails details = detailsOf({{"/m/A/1.wav", 1}, {"/m/A/2.wav", 2}, {"/m/z.wav", 4}});
    EXPECT_EQ(foldersReport(details, {"/m/A/1.wav", "/m/A/2.wav"}, allLevels, 1), "3.000\t2\t/m/A\n")
        << "and nothing above it; the third file is of no source";
    EXPECT_EQ(foldersReport(details, {"/m/A", "/m/z.wav"}, 0, 1), "7.000\t3\t/m\n3.000\t2\t/m/A\n");
    EXPECT_EQ(foldersReport(detailsOf({{"/1.wav", 1}}), {"/1.wav"}, allLevels, 1), "1.000\t1\t/\n");
}

TEST(FoldersReport, TakesAnArchiveForAFolder) {
    ScanDetails details = detailsOf({{"/m/0.wav", 1}, {"/tmp/v-1/Disc 1/01.wav", 2}, {"/tmp/v-2/02.wav", 4}});
    details.archiveOf = {{"/tmp/v-1", "/m/set.zip"}, {"/tmp/v-2", "/tmp/v-1/in/deep.tar"}};
    EXPECT_EQ(foldersReport(details, {"/m"}, allLevels, 1), "7.000\t3\t/m\n"
                                                            "6.000\t2\t/m/set.zip\n"
                                                            "2.000\t1\t/m/set.zip/Disc 1\n"
                                                            "4.000\t1\t/m/set.zip/in\n"
                                                            "4.000\t1\t/m/set.zip/in/deep.tar\n");
    EXPECT_EQ(foldersReport(details, {"/m/set.zip"}, 0, 1), "6.000\t2\t/m/set.zip\n");
}

TEST(FoldersReport, CountsOnlyWhatWasMeasured) {
    const ScanDetails details = detailsOf({{"/m/A/1.wav", -1.0}, {"/m/B/2.wav", 2}});
    EXPECT_EQ(foldersReport(details, {"/m"}, allLevels, 1), "2.000\t1\t/m\n0.000\t0\t/m/A\n2.000\t1\t/m/B\n");
    EXPECT_EQ(foldersReport({}, {"/m"}, allLevels, 1), "");
}

TEST(FoldersReport, WritesPathsAndLengthsAsTheFilesReport) {
    const ScanDetails details = detailsOf({{"/m/a\nb\t\\\xFF/1.wav", 3}});
    EXPECT_EQ(foldersReport(details, {"/m/"}, allLevels, 2), "1.500\t1\t/m\n1.500\t1\t/m/a\\nb\\t\\\\\xFF\n");
    EXPECT_EQ(foldersReport(details, {"/"}, 0, 2), "1.500\t1\t/\n");
}

} // namespace
} // namespace velmora
