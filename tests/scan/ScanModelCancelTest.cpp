#include "tests/scan/ScanModelFixture.h"
#include "tests/support/Files.h"
#include "tests/support/Shell.h"

#include <latch>

namespace velmora::test {
namespace {

using Lines = std::vector<std::string>;

class ScanModelCancelTest : public ScanModelTest {
protected:
    /// A model whose measuring is held; each dropped item is one file, and so is each of `more`.
    void createHeldModel(Paths more = {}) {
        createModel(
            {[more](const Paths& dropped, const std::stop_token&) {
                 Paths files = dropped;
                 files.insert(files.end(), more.begin(), more.end());
                 return gathered(files);
             },
             [this](const fs::path& file, const std::stop_token& stop) { return held.measure(file, stop); }});
    }
};

TEST_F(ScanModelCancelTest, ResetReturnsToIdleAtOnceAndNothingOfTheScanFollows) {
    createHeldModel({"/m/2.wav", "/m/3.wav"});
    model->ingest({"/m/1.wav"});
    awaitStatus("MEASURING");
    held.awaitStarted(3);
    record();
    model->reset();
    EXPECT_EQ(takeRecord(), (Lines{"phase idle", "summary 0/0 0 dropped ''", "processed 0", "found 0",
                                   "status ", "zip idle"}));

    QCoreApplication::processEvents();
    EXPECT_EQ(takeRecordOf("phase"), Lines{});
    EXPECT_EQ(model->phase(), ScanModel::Phase::idle);
    EXPECT_EQ(model->status(), "");
}

TEST_F(ScanModelCancelTest, OneStrayCountOfACancelledScanMayFollowAndNoMore) {
    // Three files are done when the scan is cancelled; the fourth result is still counted, the others are
    // not.
    createHeldModel(
        {"/m/2.wav", "/m/3.wav", "/m/4.wav", "/m/5.wav", "/m/6.wav", "/m/7.wav", "/m/8.wav", "/m/9.wav"});
    model->ingest({"/m/1.wav"});
    awaitStatus("MEASURING");
    held.release(3);
    held.awaitStarted(9); // a worker hands its result over before it takes the next file
    QCoreApplication::processEvents();
    record();
    model->reset();
    takeRecord();
    awaitThat([&] { return model->processed() != 0; });

    EXPECT_EQ(takeRecord(), Lines{"processed 4"});
    QCoreApplication::processEvents();
    EXPECT_EQ(takeRecord(), Lines{});
    EXPECT_EQ(model->phase(), ScanModel::Phase::idle);
}

TEST_F(ScanModelCancelTest, ANewScanSupersedesARunningOne) {
    createHeldModel();
    model->ingest({"/m/old.wav"});
    awaitStatus("MEASURING");
    held.awaitStarted(1);
    model->ingest({"/m/new.wav"});
    EXPECT_EQ(model->status(), "READING SOURCE");
    awaitStatus("MEASURING");
    held.awaitStarted(2);
    held.release(1);
    awaitStatus("COMPLETE");

    EXPECT_EQ(model->summary().files, Paths{"/m/new.wav"});
    EXPECT_EQ(model->summary().source, "NEW.WAV");
}

TEST_F(ScanModelCancelTest, GatheringRunsToItsEndAndItsDirectoriesAreReleasedLater) {
    std::latch mayEnd(1);
    const fs::path unpacked = fs::temp_directory_path() / "velmora-UNPACKED";
    createModel({[&](const Paths& dropped, const std::stop_token&) {
                     if (dropped.front() == "/m/slow.zip") {
                         mayEnd.wait();
                         write(unpacked / "x.wav");
                         return GatherResult{{unpacked / "x.wav"}, {unpacked}, {dropped.front()}, {}};
                     }
                     return GatherResult{};
                 },
                 [](const fs::path& file, const std::stop_token&) {
                     return Measured{file, 1, 1};
                 }});
    model->ingest({"/m/slow.zip"});
    model->ingest({"/m/other"});
    awaitStatus("NO AUDIO FOUND");
    record();
    mayEnd.count_down();
    awaitThat([&] { return fs::exists(unpacked / "x.wav"); });
    awaitThat([&] { // released by the first reset after the late gathering was registered
        model->reset();
        return !fs::exists(unpacked);
    });
    for (const std::string& line : takeRecord()) {
        EXPECT_TRUE(line != "found 1" && !line.starts_with("status M") && line != "phase done") << line;
    }
}

TEST_F(ScanModelCancelTest, ANewScanReleasesThePreviousScansDirectories) {
    const fs::path folder = freshFolder();
    write(folder / "song.wav", "not audio");
    shell("zip -q set.zip song.wav && rm song.wav", folder);
    createModel();
    model->ingest({folder / "set.zip"});
    awaitStatus("NO READABLE AUDIO");
    EXPECT_EQ(temporaryItems().size(), 1U);
    EXPECT_EQ(model->details().shownPath(model->details().files.front().url),
              folder / "set.zip" / "song.wav");

    model->reset();
    EXPECT_EQ(temporaryItems(), Lines{});
}

TEST_F(ScanModelCancelTest, LeavesNothingWhenItEndsDuringAnExtraction) {
    const fs::path folder = freshFolder();
    shell("head -c 300000000 /dev/zero > zeros.wav && xz -0 -T2 zeros.wav && mv zeros.wav.xz a.xz && "
          "tar -cJf big.tar.xz a.xz && head -c 400000000 /dev/zero | xz -0 > zeros.xz",
          folder);
    createModel();
    model->ingest({folder / "zeros.xz", folder / "big.tar.xz"});
    awaitThat([] { return !temporaryItems().empty(); });
    model.reset();
    EXPECT_EQ(temporaryItems(), Lines{});
}

TEST_F(ScanModelCancelTest, EndsWhileMeasurementsAreUnderWay) {
    createHeldModel({"/m/2.wav"});
    model->ingest({"/m/1.wav"});
    awaitStatus("MEASURING");
    held.awaitStarted(2);
    model.reset(); // returns only when the workers have ended
    EXPECT_EQ(held.started().size(), 2U);
}

} // namespace
} // namespace velmora::test
