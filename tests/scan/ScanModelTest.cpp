#include "system/Paths.h"
#include "tests/scan/ScanModelFixture.h"
#include "tests/support/Files.h"
#include "tests/support/Shell.h"

#include <future>
#include <thread>

namespace velmora::test {
namespace {

using Lines = std::vector<std::string>;

/// "/m/01.wav", "/m/02.wav", ...
Paths tracks(int count) {
    Paths files;
    for (int i = 1; i <= count; ++i) {
        files.emplace_back("/m/" + std::string(i < 10 ? "0" : "") + std::to_string(i) + ".wav");
    }
    return files;
}

TEST_F(ScanModelTest, PublishesAScanInOneExactOrder) {
    createModel({"/m/Live Set/1.wav", "/m/Live Set/2.wav"}, {{"1.wav", 2}, {"2.wav", 3}});
    record();

    model->ingest({"/m/Live Set"});
    EXPECT_EQ(takeRecord(),
              (Lines{"phase scanning", "summary 0/0 0 dropped ''", "summary 0/0 1 dropped ''", "processed 0",
                     "found 0", "zip idle", "status READING SOURCE", "summary 0/0 1 dropped 'LIVE SET'"}));
    awaitStatus("COMPLETE");
    EXPECT_EQ(takeRecord(), (Lines{"found 2", "status MEASURING", "processed 2", "processed 2",
                                   "summary 2/0 1 dropped 'LIVE SET'", "phase done", "status COMPLETE"}));
    EXPECT_EQ(model->summary().roots, Paths{"/m/Live Set"});
}

TEST_F(ScanModelTest, DoesNothingAtAllWhenNothingIsDropped) {
    createModel(tracks(1), {{"01.wav", 1}});
    record();
    model->ingest({});
    EXPECT_EQ(takeRecord(), Lines{});

    model->ingest({"/m"});
    takeRecord();
    model->ingest({});
    EXPECT_EQ(takeRecord(), Lines{});
    awaitStatus("COMPLETE");
}

TEST_F(ScanModelTest, NamesTheSourceByItsItemOrByTheNumberOfItems) {
    createModel({}, {});
    model->ingest({"/m/Live Set/"});
    EXPECT_EQ(model->summary().source, "LIVE SET");
    model->ingest({"/m/a.wav", "/m/b.wav"});
    EXPECT_EQ(model->summary().source, "2 ITEMS");
    model->ingest({"/m/straße é.wav"});
    EXPECT_EQ(model->summary().source, "STRASSE É.WAV");
}

TEST_F(ScanModelTest, EndsEmptyWhenADropHoldsNoAudioButABrokenArchive) {
    const fs::path broken = write(freshFolder() / "broken.zip", "this is no archive");
    createModel();
    record();
    model->ingest({broken});
    awaitStatus("NO AUDIO FOUND");

    EXPECT_EQ(model->phase(), ScanModel::Phase::empty);
    EXPECT_EQ(model->summary().unreadable, 1);
    EXPECT_EQ(model->summary().source, "BROKEN.ZIP");
    EXPECT_EQ(model->summary().roots, Paths{});
    EXPECT_EQ(model->found(), 0);
    EXPECT_EQ(model->processed(), 0);
    EXPECT_EQ(model->details().skippedArchives, (std::vector<SkippedArchive>{{broken, Reason::noTool}}));
    const Lines lines = takeRecord();
    EXPECT_EQ(Lines(lines.end() - 4, lines.end()), (Lines{"found 0", "summary 0/1 1 dropped 'BROKEN.ZIP'",
                                                          "phase empty", "status NO AUDIO FOUND"}));
}

TEST_F(ScanModelTest, EndsEmptyWhenNoFileCouldBeMeasured) {
    createModel(tracks(3), {});
    model->ingest({"/m"});
    awaitStatus("NO READABLE AUDIO");

    EXPECT_EQ(model->phase(), ScanModel::Phase::empty);
    EXPECT_EQ(model->summary().unreadable, 3);
    EXPECT_EQ(model->summary().fileCount, 0);
    EXPECT_EQ(model->processed(), 3);
    EXPECT_EQ(model->found(), 3);
    EXPECT_EQ(model->summary().dropped, Paths{"/m"});
    EXPECT_EQ(model->summary().roots, Paths{"/m"});
}

TEST_F(ScanModelTest, PublishesEveryFourthFileAndTheLast) {
    createModel(
        {[](const PathList&, const std::stop_token&, const Unpacking&) { return gathered(tracks(10)); },
         [this](const fs::path& file, const std::stop_token& stop) { return held.measure(file, stop); }});
    record();
    std::vector<double> progress;
    QObject::connect(model.get(), &ScanModel::processedChanged,
                     [&] { progress.push_back(model->progress()); });
    model->ingest({"/m"});
    awaitStatus("MEASURING");
    for (std::size_t i = 1; i <= 10; ++i) { // one by one, so that every count is seen
        held.awaitStarted(std::min<std::size_t>(10, i + 5));
        held.release(1);
    }
    awaitStatus("COMPLETE");

    EXPECT_EQ(takeRecordOf("processed"),
              (Lines{"processed 0", "processed 4", "processed 8", "processed 10", "processed 10"}));
    EXPECT_EQ(progress, (std::vector<double>{0, 0.4, 0.8, 1, 1}));
}

TEST_F(ScanModelTest, MeasuresSixFilesAtATimeStartedInScanOrder) {
    createModel(
        {[](const PathList&, const std::stop_token&, const Unpacking&) { return gathered(tracks(12)); },
         [this](const fs::path& file, const std::stop_token& stop) { return held.measure(file, stop); }});
    model->ingest({"/m"});
    awaitStatus("MEASURING");
    held.awaitStarted(6);
    std::this_thread::yield();
    EXPECT_EQ(held.started().size(), 6U);
    for (std::size_t next = 7; next <= 12; ++next) {
        held.release(1);
        held.awaitStarted(next);
        EXPECT_EQ(held.started().back(), tracks(12)[next - 1]);
        EXPECT_EQ(held.started().size(), next);
    }
    held.release(6);
    awaitStatus("COMPLETE");
    EXPECT_EQ(model->summary().files, tracks(12));
}

TEST_F(ScanModelTest, GoesOnMeasuringWhileTheMainThreadIsBusy) {
    createModel(
        {[](const PathList&, const std::stop_token&, const Unpacking&) { return gathered(tracks(60)); },
         [this](const fs::path& file, const std::stop_token& stop) { return held.measure(file, stop); }});
    model->ingest({"/m"});
    awaitStatus("MEASURING");
    held.release(60);
    held.awaitStarted(60); // no turn of the event loop in between
    EXPECT_EQ(model->processed(), 0);
    awaitStatus("COMPLETE");
    EXPECT_EQ(model->summary().fileCount, 60);
}

TEST_F(ScanModelTest, CountsSkippedArchivesAsUnreadableBesideUnmeasuredFiles) {
    createModel({[](const PathList&, const std::stop_token&, const Unpacking&) {
                     return GatherResult{{"/m/good.wav", "/m/bad.wav"},
                                         {"/t/velmora-A"},
                                         {"/m/a.zip"},
                                         {{"/m/b.rar", Reason::encrypted}}};
                 },
                 [](const fs::path& file, const std::stop_token&) {
                     return Measured{file, file == "/m/good.wav" ? 4.5 : unmeasured, 7};
                 }});
    model->ingest({"/m/good.wav", "/m"});
    awaitStatus("COMPLETE");

    EXPECT_EQ(model->summary().unreadable, 2);
    EXPECT_EQ(model->summary().bytes, 7);
    EXPECT_EQ(model->summary().roots, (Paths{"/m/good.wav", "/m", "/t/velmora-A"}));
    EXPECT_EQ(model->details().files,
              (std::vector<Measured>{{"/m/good.wav", 4.5, 7}, {"/m/bad.wav", -1, 7}}));
}

TEST_F(ScanModelTest, GoesOnWhereOneFileFindsNoMemory) {
    createModel(
        {[](const PathList&, const std::stop_token&, const Unpacking&) { return gathered(tracks(3)); },
         [](const fs::path& file, const std::stop_token&) {
             return file == tracks(3)[1] ? throw std::bad_alloc() : Measured{file, 4.5, 7};
         }});
    model->ingest({"/m"});
    awaitStatus("COMPLETE");
    EXPECT_EQ(model->summary().seconds, 9);
    EXPECT_EQ(model->summary().unreadable, 1);
    EXPECT_EQ(model->details().files[1], (Measured{tracks(3)[1], unmeasured, 0, Reason::cannotBeRead}));
}

TEST_F(ScanModelTest, ShowsExtractedFilesUnderTheirArchivesOwnPaths) {
    ScanDetails details;
    details.archiveOf = {{"/t/velmora-A", "/music/set.zip"},
                         {"/t/velmora-B", "/t/velmora-A/more/inner.tar.gz"}};

    EXPECT_EQ(details.shownPath("/t/velmora-A/Disc 1/01.wav"), "/music/set.zip/Disc 1/01.wav");
    EXPECT_EQ(details.shownPath("/t/velmora-B/x.mp3"), "/music/set.zip/more/inner.tar.gz/x.mp3");
    EXPECT_EQ(details.shownPath("/t/velmora-AB/x.mp3"), "/t/velmora-AB/x.mp3");
    EXPECT_EQ(details.shownPath("/t/velmora-B"), "/music/set.zip/more/inner.tar.gz");
    EXPECT_EQ(details.placeOf("/t/velmora-B/x.mp3"), "/music/set.zip");
    EXPECT_EQ(details.placeOf("/t/velmora-A/Disc 1/01.wav"), "/music/set.zip");
    EXPECT_EQ(details.placeOf("/t/velmora-AB/x.mp3"), "/t/velmora-AB/x.mp3");
}

TEST_F(ScanModelTest, KeepsProgressBetweenZeroAndOne) {
    createModel({}, {});
    EXPECT_EQ(model->progress(), 0);
    model->ingest({"/m"});
    awaitStatus("NO AUDIO FOUND");
    EXPECT_EQ(model->progress(), 0);
}

TEST_F(ScanModelTest, SweepsWhatAnEarlierRunLeft) {
    write(fs::temp_directory_path() / "velmora-1234" / "x.wav");
    write(fs::temp_directory_path() / "velmora-src-x-y.zip");
    write(fs::temp_directory_path() / "other-velmora-1");
    createModel();
    EXPECT_EQ(temporaryItems(), Lines{});
    EXPECT_TRUE(fs::exists(fs::temp_directory_path() / "other-velmora-1"));
}

TEST_F(ScanModelTest, NamesTheArchiveThatIsBeingUnpacked) {
    std::promise<void> unpacked;
    createModel({[done = unpacked.get_future().share()](const PathList&, const std::stop_token&,
                                                        const Unpacking& unpacking) {
                     unpacking("/music/Live Set.zip");
                     done.wait();
                     unpacking({});
                     return gathered({});
                 },
                 {}});
    model->ingest(Paths{"/music"});
    awaitThat([this] { return model->unpacking() == "Live Set.zip"; });
    unpacked.set_value();
    awaitStatus("NO AUDIO FOUND");
    EXPECT_EQ(model->unpacking(), "");
}

TEST_F(ScanModelTest, ForgetsWhatACancelledScanUnpacks) {
    std::promise<void> cancelled;
    std::promise<void> told;
    createModel({[&](const PathList&, const std::stop_token&, const Unpacking& unpacking) {
                     unpacking("/music/Live Set.zip");
                     cancelled.get_future().wait();
                     unpacking("/music/Encore.zip");
                     told.set_value();
                     return gathered({});
                 },
                 {}});
    model->ingest(Paths{"/music"});
    awaitThat([this] { return model->unpacking() == "Live Set.zip"; });
    model->reset();
    EXPECT_EQ(model->unpacking(), "");
    cancelled.set_value();
    told.get_future().wait();
    QCoreApplication::processEvents();
    EXPECT_EQ(model->unpacking(), "");
}

} // namespace
} // namespace velmora::test
