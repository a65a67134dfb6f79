#include "tests/scan/ScanModelFixture.h"
#include "tests/support/Files.h"

namespace velmora::test {
namespace {

class ReportsTest : public ScanModelTest {
protected:
    /// Scans `dropped`, which holds `lengths.size()` files measured so, in the folder /m.
    void scan(const Paths& dropped, const std::map<std::string, double>& lengths) {
        Paths files;
        for (const auto& [name, length] : lengths) {
            files.push_back("/m/" + name);
        }
        createModel(files, lengths);
        model->ingest(dropped);
        awaitThat([&] { return model->phase() != ScanModel::Phase::scanning; });
    }

    /// The name proposed for a zip after `dropped` alone was dropped.
    std::string zipNameFor(const fs::path& dropped) {
        createModel({}, {});
        model->ingest({dropped});
        return model->suggestedZipName();
    }
};

TEST_F(ReportsTest, ReadEmptyBeforeAnyScan) {
    createModel({}, {});
    EXPECT_EQ(model->totalText(), "TOTAL RUNTIME  00:00:00   (0 sec)\n0 audio files");
    EXPECT_EQ(model->fileListText(), "");
    EXPECT_EQ(model->suggestedZipName(), "Audio.zip");
    EXPECT_EQ(model->suggestedZipDirectory(), std::nullopt);
}

TEST_F(ReportsTest, TotalNamesLengthCountAndSource) {
    scan({"/m/Live Set"}, {{"a.wav", 3000}, {"b.wav", 725.4}});
    EXPECT_EQ(model->totalText(),
              "TOTAL RUNTIME  01:02:05   (1 hr  2 min  5 sec)\n2 audio files \u2014 LIVE SET");
}

TEST_F(ReportsTest, TotalSpeaksOfOneAudioFile) {
    scan({"/m/a.wav"}, {{"a.wav", 42}});
    EXPECT_EQ(model->totalText(), "TOTAL RUNTIME  00:00:42   (42 sec)\n1 audio file \u2014 A.WAV");
}

TEST_F(ReportsTest, TotalSurvivesLengthsNoClockCanShow) {
    scan({"/m/a.wav"}, {{"a.wav", 1.8e19}, {"b.wav", 1e300}});
    EXPECT_TRUE(model->totalText().starts_with("TOTAL RUNTIME  1281023894007607:45:04   ("));
}

TEST_F(ReportsTest, FileListHoldsMeasuredNamesInScanOrderOneALine) {
    scan({"/m"}, {{"1.wav", 1}, {"2.wav", -1}, {"3.wav", 1}, {"x y.wav", 1}});
    EXPECT_EQ(model->fileListText(), "1.wav\n3.wav\nx y.wav");
}

TEST_F(ReportsTest, FileListShowsEqualNamesOfDifferentFolders) {
    createModel({"/m/a/01.wav", "/m/b/01.wav"}, {{"01.wav", 1}});
    model->ingest({"/m"});
    awaitStatus("COMPLETE");
    EXPECT_EQ(model->fileListText(), "01.wav\n01.wav");
}

TEST_F(ReportsTest, ZipIsNamedAfterTheDroppedItemWithoutItsKnownExtensions) {
    EXPECT_EQ(zipNameFor("/m/show.tar.gz"), "show audio.zip");
    EXPECT_EQ(zipNameFor("/m/Live Set.zip"), "Live Set audio.zip");
    EXPECT_EQ(zipNameFor("/m/mix.ZIP"), "mix audio.zip");
    EXPECT_EQ(zipNameFor("/m/take.two.mp3"), "take.two audio.zip");
    EXPECT_EQ(zipNameFor("/m/notes"), "notes audio.zip");
    EXPECT_EQ(zipNameFor("/m/Mr. Smith"), "Mr. Smith audio.zip");
}

TEST_F(ReportsTest, ZipIsNamedAudioWhenNothingOfTheNameIsLeft) {
    EXPECT_EQ(zipNameFor("/m/.mp3"), "Audio audio.zip");
    EXPECT_EQ(zipNameFor("/m/.tar.gz"), "Audio audio.zip");
}

TEST_F(ReportsTest, ZipOfAFolderKeepsTheFoldersName) {
    const fs::path folder = freshFolder();
    fs::create_directories(folder / "Live Set");
    fs::create_directories(folder / "Set.flac");
    fs::create_directories(folder / "Disc.1");
    EXPECT_EQ(zipNameFor(folder / "Live Set"), "Live Set.zip");
    EXPECT_EQ(zipNameFor(folder / "Live Set/"), "Live Set.zip");
    EXPECT_EQ(zipNameFor(folder / "Set.flac"), "Set.zip");
    EXPECT_EQ(zipNameFor(folder / "Disc.1"), "Disc.1.zip");
}

TEST_F(ReportsTest, ZipOfSeveralItemsIsNamedAudioAndStandsBesideTheFirst) {
    scan({"/m/one/a.wav", "/n/b.wav"}, {{"a.wav", 1}});
    EXPECT_EQ(model->suggestedZipName(), "Audio.zip");
    EXPECT_EQ(model->suggestedZipDirectory(), fs::path("/m/one"));
}

TEST_F(ReportsTest, ZipStandsBesideADroppedFolderAlsoWhenItsPathEndsInASlash) {
    createModel({}, {});
    model->ingest({"/m/one/"});
    EXPECT_EQ(model->suggestedZipDirectory(), fs::path("/m"));
}

} // namespace
} // namespace velmora::test
