// What the desktop learns of real scans, and when.

#include "app/ScanNews.h"

#include "scan/ScanModel.h"
#include "tests/app/SessionBus.h"
#include "tests/support/ComesTrue.h"
#include "tests/support/Files.h"
#include "tests/window/NewsServices.h"
#include "ui/content/ScanView.h"

#include <QSignalSpy>
#include <QWindow>

#include <gmock/gmock.h>

#include <atomic>
#include <memory>

namespace velmora::test {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ScanNewsTest : public testing::Test {
protected:
    void SetUp() override {
        news->setWindow(&window);
        bringToFront(other);
    }

    static void bringToFront(QWindow& window) {
        window.show();
        window.requestActivate();
        EXPECT_TRUE(comesTrue([&] { return window.isActive(); }));
    }

    /// Scans `files` in the time `taken`, and waits until the desktop has heard of it.
    void scan(PathList files, std::chrono::steady_clock::duration taken) {
        duration = taken;
        model.ingest(std::move(files));
        EXPECT_TRUE(comesTrue([this] { return model.phase() != ScanModel::Phase::scanning; }));
        SessionBus::settle();
    }

    void longScan() {
        scan({write(folder / "music" / "a.wav", "audio")}, milliseconds(10'001));
        EXPECT_THAT(server.shown, SizeIs(1));
        EXPECT_THAT(server.closed, IsEmpty());
    }

    void zip(const fs::path& archive) {
        model.makeZip(archive);
        EXPECT_TRUE(comesTrue([this] { return !std::holds_alternative<ZipWorking>(model.zipState()); }));
        SessionBus::settle();
    }

    fs::path folder = freshFolder();
    std::chrono::steady_clock::time_point now;
    std::chrono::steady_clock::duration duration{};
    std::atomic<bool> held = false; ///< a scan comes to no end

    SessionBus session;
    NotificationServer server{SessionBus::services()};
    InhibitPortal portal{SessionBus::services()};
    Dock dock{SessionBus::services()};

    /// Every file is audio of an hour, but those whose name begins with "no".
    ScanModel model{{.gather =
                         [this](const PathList& dropped, const auto&, const auto&) {
                             now += duration;
                             held.wait(true);
                             GatherResult result;
                             result.files = {dropped.begin(), PathList::end()};
                             return result;
                         },
                     .measure =
                         [](const fs::path& file, const auto&) {
                             const bool audio = !file.filename().native().starts_with("no");
                             return Measured{.url = file, .seconds = audio ? 3600.0 : -1, .bytes = 5};
                         }}};
    ScanView view{model};
    QWindow window;
    QWindow other;
    std::unique_ptr<ScanNews> news = std::make_unique<ScanNews>(model, view, [this] { return now; });
};

TEST_F(ScanNewsTest, TellsOfAScanThatTookLong) {
    longScan();
    EXPECT_EQ(server.shown.last().title, "A.WAV – 01:00:00");
    EXPECT_EQ(server.shown.last().body, "1 file");
    scan({"/m/a.wav", "/m/b.wav", "/m/no.wav"}, milliseconds(60'000));
    EXPECT_EQ(server.shown.last().title, "3 ITEMS – 02:00:00");
    EXPECT_EQ(server.shown.last().body, "2 files\n1 file could not be read");
}

TEST_F(ScanNewsTest, TellsOfALongScanWithoutAResult) {
    scan({"/m/no.wav"}, milliseconds(10'001));
    EXPECT_EQ(server.shown.last().title, "NO.WAV");
    EXPECT_EQ(server.shown.last().body, "No readable audio\nno.wav: cannot be read");
}

TEST_F(ScanNewsTest, IsSilentAfterTenSecondsOrLess) {
    scan({"/m/a.wav"}, milliseconds(10'000));
    EXPECT_THAT(server.shown, IsEmpty());
}

TEST_F(ScanNewsTest, IsSilentWhileTheWindowIsInFront) {
    bringToFront(window);
    scan({write(folder / "a.wav", "audio")}, milliseconds(10'001));
    zip(folder / "a.zip");
    zip(folder / "missing" / "a.zip");
    EXPECT_THAT(server.shown, IsEmpty());
}

TEST_F(ScanNewsTest, IsTakenBackWhenTheWindowComesToTheFront) {
    longScan();
    bringToFront(window);
    SessionBus::settle();
    EXPECT_THAT(server.closed, ElementsAre(1));
}

TEST_F(ScanNewsTest, IsTakenBackByTheNextScan) {
    longScan();
    scan({"/m/a.wav"}, milliseconds(0));
    EXPECT_THAT(server.closed, ElementsAre(1));
    EXPECT_THAT(server.shown, SizeIs(1));
}

TEST_F(ScanNewsTest, IsTakenBackByAReset) {
    longScan();
    model.reset();
    SessionBus::settle();
    EXPECT_THAT(server.closed, ElementsAre(1));
}

TEST_F(ScanNewsTest, IsTakenBackAtTheEnd) {
    longScan();
    news.reset();
    SessionBus::settle();
    EXPECT_THAT(server.closed, ElementsAre(1));
}

TEST_F(ScanNewsTest, BringsTheWindowWhenItIsPressed) {
    QSignalSpy wanted(news.get(), &ScanNews::windowWanted);
    longScan();
    server.press("default", "token");
    SessionBus::settle();
    EXPECT_THAT(wanted, ElementsAre(ElementsAre(QByteArray("token"))));
}

TEST_F(ScanNewsTest, TellsOfAZipWithAButtonThatShowsIt) {
    QSignalSpy wanted(news.get(), &ScanNews::zipWanted);
    scan({write(folder / "a.wav", "audio"), write(folder / "b.wav", "audio")}, milliseconds(0));
    EXPECT_EQ(portal.asked, 0) << "a scan does not keep the machine awake";
    zip(folder / "My mix.zip");
    ASSERT_THAT(server.shown, SizeIs(1));
    EXPECT_EQ(server.shown.last().title, "Zip saved – My mix.zip");
    EXPECT_EQ(server.shown.last().body, "2 files");
    EXPECT_EQ(server.shown.last().actions.mid(2), QStringList({"button", "Show in folder"}));
    server.press("button", "token");
    SessionBus::settle();
    EXPECT_THAT(wanted, ElementsAre(ElementsAre(QByteArray("token"))));
    EXPECT_EQ(portal.options, (QVariantMap{{"reason", "A zip archive is being written"}}));
    EXPECT_EQ(portal.asked, 1);
    EXPECT_EQ(portal.released, 1);
}

TEST_F(ScanNewsTest, TellsWhyAZipFailed) {
    scan({write(folder / "a.wav", "audio")}, milliseconds(0));
    zip(folder / "missing" / "a.zip");
    ASSERT_THAT(server.shown, SizeIs(1));
    EXPECT_EQ(server.shown.last().title, "Zip failed");
    EXPECT_EQ(server.shown.last().body, QString::fromStdString(std::get<ZipFailed>(model.zipState()).text));
    EXPECT_EQ(server.shown.last().actions.size(), 2);
    EXPECT_EQ(portal.asked, 1);
    EXPECT_EQ(portal.released, 1);
}

TEST_F(ScanNewsTest, ShowsProgressUntilTheScanEnds) {
    scan({write(folder / "a.wav", "audio")}, milliseconds(0));
    ASSERT_FALSE(dock.updates.isEmpty());
    EXPECT_TRUE(dock.updates.first()["progress-visible"].toBool());
    EXPECT_EQ(dock.updates.first()["progress"], 0.0);
    EXPECT_TRUE(comesTrue([this] { return !dock.showsProgress(); }));
}

TEST_F(ScanNewsTest, ShowsProgressUntilTheZipEnds) {
    scan({write(folder / "a.wav", "audio")}, milliseconds(0));
    EXPECT_TRUE(comesTrue([this] { return !dock.showsProgress(); }));
    dock.updates.clear();
    EXPECT_TRUE(comesTrue([this] {
        zip(folder / "a.zip"); // one that begins and ends in the pause between two updates is not seen
        return !dock.updates.isEmpty();
    }));
    EXPECT_TRUE(dock.updates.first()["progress-visible"].toBool());
    EXPECT_TRUE(comesTrue([this] { return !dock.showsProgress(); }));
}

TEST_F(ScanNewsTest, ShowsTheProgressOfEachScanFromZero) {
    scan({write(folder / "a.wav", "audio")}, milliseconds(0));
    EXPECT_TRUE(comesTrue([this] { return !dock.showsProgress(); }));
    dock.updates.clear();
    EXPECT_TRUE(comesTrue([this] {
        scan({folder / "a.wav"}, milliseconds(0)); // as above
        return !dock.updates.isEmpty();
    }));
    EXPECT_EQ(dock.updates.first(), (QVariantMap{{"progress-visible", true}, {"progress", 0.0}}));
}

TEST_F(ScanNewsTest, ShowsNoProgressAfterAReset) {
    held = true;
    model.ingest({"/m/a.wav"});
    EXPECT_TRUE(comesTrue([this] { return dock.showsProgress(); }));
    model.reset();
    EXPECT_TRUE(comesTrue([this] { return !dock.showsProgress(); }));
    held = false;
    held.notify_all();
}

} // namespace
} // namespace velmora::test
