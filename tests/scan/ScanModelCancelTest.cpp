#include "tests/scan/ScanModelFixture.h"
#include "tests/support/Files.h"
#include "tests/support/Shell.h"

#include <QTimer>

#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <latch>
#include <thread>

namespace {

std::atomic<std::thread::id> deletingThread; // the last one that deleted something

} // namespace

/// Stands between the tests and the C library.
extern "C" int unlinkat(int folder, const char* name, int flags) noexcept {
    static const auto real = reinterpret_cast<decltype(&unlinkat)>(::dlsym(RTLD_NEXT, "unlinkat"));
    deletingThread = std::this_thread::get_id();
    return real(folder, name, flags);
}

namespace velmora::test {
namespace {

using Lines = std::vector<std::string>;

class ScanModelCancelTest : public ScanModelTest {
protected:
    /// A model whose measuring is held; each dropped item is one file, and so is each of `more`.
    void createHeldModel(Paths more = {}) {
        createModel(
            {[more](const PathList& dropped, const std::stop_token&, const Unpacking&) {
                 Paths files = dropped.paths();
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

TEST_F(ScanModelCancelTest, AResetWhileResultsStreamInIsObeyedBeforeTheyEnd) {
    constexpr int files = 20'000;
    createModel({[](const PathList&, const std::stop_token&, const Unpacking&) {
                     return gathered(Paths(files, "/m/1.wav"));
                 },
                 [](const fs::path& file, const std::stop_token&) {
                     return Measured{file, 1.0, 10};
                 }});
    int counts = 0; // each takes so long that the workers are done with all files before the main thread
    QObject::connect(model.get(), &ScanModel::processedChanged, [&counts] {
        ++counts;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
    bool reset = false;
    model->ingest({"/m"});
    awaitStatus("MEASURING");
    QTimer::singleShot(0, [&] {
        model->reset();
        reset = true;
    });
    counts = 0;
    awaitThat([&] { return reset; });
    EXPECT_LT(counts, 1000) << "of " << files / 4;
    EXPECT_EQ(model->phase(), ScanModel::Phase::idle);
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
    createModel({[&](const PathList& dropped, const std::stop_token&, const Unpacking&) {
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

/// A scan that has unpacked an archive and could not unpack another.
class ScannedArchiveTest : public ScanModelTest {
protected:
    void SetUp() override {
        write(folder / "song.wav", "not audio");
        write(folder / "broken.zip", "no archive");
        shell("zip -q set.zip song.wav && rm song.wav", folder);
        createModel();
        model->ingest({folder});
        awaitStatus("NO READABLE AUDIO");
    }

    void expectNothingOfIt() const {
        EXPECT_EQ(model->details().files, std::vector<Measured>{});
        EXPECT_EQ(model->details().skippedArchives, std::vector<SkippedArchive>{});
        EXPECT_TRUE(model->details().archiveOf.empty());
    }

    const fs::path folder = freshFolder();
};

TEST_F(ScannedArchiveTest, KeepsWhatItFound) {
    EXPECT_EQ(temporaryItems().size(), 1U);
    EXPECT_EQ(model->details().shownPath(model->details().files.front().url),
              folder / "set.zip" / "song.wav");
    EXPECT_EQ(model->details().skippedArchives,
              (std::vector<SkippedArchive>{{folder / "broken.zip", Reason::noTool}}));
}

TEST_F(ScannedArchiveTest, IsForgottenAtAReset) {
    model->reset();
    expectNothingOfIt();
    awaitThat([] { return temporaryItems().empty(); });
}

TEST_F(ScannedArchiveTest, IsForgottenAsSoonAsTheNextBegins) {
    model->ingest({folder / "missing"});
    expectNothingOfIt();
    awaitThat([] { return temporaryItems().empty(); });
}

TEST_F(ScannedArchiveTest, IsDeletedWhileTheMainThreadGoesOn) {
    deletingThread = std::thread::id();
    model->reset();
    awaitThat([] { return temporaryItems().empty(); });
    EXPECT_NE(deletingThread.load(), std::thread::id());
    EXPECT_NE(deletingThread.load(), std::this_thread::get_id());
}

TEST_F(ScannedArchiveTest, LeavesNothingAtTheEnd) {
    model.reset();
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

TEST_F(ScanModelCancelTest, LeavesNothingOfWhatIsUnpackedWhileItEnds) {
    const fs::path unpacked = fs::temp_directory_path() / "velmora-UNPACKED";
    createModel({[&](const PathList& dropped, const std::stop_token& programEnds, const Unpacking&) {
                     std::latch ending(1);
                     const std::stop_callback tell(programEnds, [&] { ending.count_down(); });
                     ending.wait();
                     write(unpacked / "x.wav");
                     return GatherResult{{unpacked / "x.wav"}, {unpacked}, dropped.paths(), {}};
                 },
                 {}});
    model->ingest({"/m/slow.zip"});
    model.reset();
    EXPECT_EQ(temporaryItems(), Lines{});
}

TEST_F(ScanModelCancelTest, MeasuresNoFurtherFileOnceItIsCancelled) {
    createHeldModel({"/m/2.wav", "/m/3.wav", "/m/4.wav", "/m/5.wav", "/m/6.wav", "/m/7.wav", "/m/8.wav"});
    model->ingest({"/m/1.wav"});
    awaitStatus("MEASURING");
    held.awaitStarted(6);
    model.reset(); // returns only when the workers have ended
    EXPECT_EQ(held.started().size(), 6U);
}

} // namespace
} // namespace velmora::test
