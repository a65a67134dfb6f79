// Writes a picture of every state of the window, for people to look at:
//   velmora_picture_book DIRECTORY [WIDTH HEIGHT [SCALE [STATE…]]]
// WIDTH and HEIGHT are those of the content, in points; the title bar is added to HEIGHT. The same bytes on
// every run.

#include "app/WindowActions.h"
#include "screenshots/Screenshots.h"
#include "tests/staged/PanelPages.h"
#include "ui/Views.h"

#include <QGuiApplication>
#include <QImage>
#include <QLocale>
#include <QTest>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace velmora::test {
namespace {

ScanState scanning(int processed, const std::string& source) {
    return {.phase = ScanModel::Phase::scanning,
            .status = "MEASURING",
            .processed = processed,
            .found = 48,
            .progress = processed / 48.0,
            .source = source};
}

ScanState done(const ZipState& zip = {}, int unreadable = 0) {
    return {.phase = ScanModel::Phase::done,
            .status = "COMPLETE",
            .processed = 214,
            .found = 214,
            .progress = 1,
            .source = "FIELD RECORDINGS",
            .seconds = 363'725.4,
            .fileCount = 214 - unreadable,
            .bytes = 48'200'000'000,
            .unreadable = unreadable,
            .zip = zip};
}

ScanState empty(const std::string& status) {
    return {.phase = ScanModel::Phase::empty, .status = status, .source = "NOTES"};
}

Page alert(const AlertText& text) {
    return {.arrange = [text](Stage& stage) { stage.alerts.show(text); }};
}

/// With the switch on or off, and the focus after Tab was pressed so many times.
Page about(bool on, int tabs) {
    return {.arrange = [on, tabs](Stage& stage) {
        stage.alerts.show(aboutText(AlertSwitch{QStringLiteral("Look for updates once a day"), on}));
        stage.press(Qt::Key_Tab, tabs);
    }};
}

AlertText offer(const QString& notes) {
    return {QStringLiteral("Velmora 2.1 is available"),
            QStringLiteral("You have 1.0.0. Version 2.1 is available.\n\n") + notes,
            QStringLiteral("Download"), QStringLiteral("Later")};
}

/// The focus after Tab was pressed so many times.
Page focus(int tabs, const ScanState& state) {
    return {state, [tabs](Stage& stage) { stage.press(Qt::Key_Tab, tabs); }};
}

Page toolTip(const char* name, const ScanState& state = {}) {
    return {state, [name](Stage& stage) {
                stage.hover(name);
                stage.awaitToolTip();
            }};
}

std::map<std::string, Page> scanPages() {
    std::string longLabel = "FIELD RECORDINGS";
    for (const char* place :
         {"HARBOUR", "MARKET", "OLD TOWN", "STATION", "RIVER", "LIGHTHOUSE", "CATHEDRAL"}) {
        longLabel += std::string(" AND ") + place;
    }
    ScanState huge = done({}, 1'234'567);
    huge.seconds = 4.6e18;
    huge.fileCount = 2'147'483'647;
    huge.bytes = 9'223'372'036'854'775'807;
    ScanState one = done();
    one.seconds = 61;
    one.fileCount = 1;
    one.bytes = 1;
    return {
        {"idle", {}},
        {"targeted", {.arrange = [](Stage& stage) { stage.scan.setTargeted(true); }}},
        {"reading", {{.phase = ScanModel::Phase::scanning, .status = "READING SOURCE", .source = "3 ITEMS"}}},
        {"scanning-start", {scanning(0, "LIVE SET 2026")}},
        {"scanning", {scanning(31, "LIVE SET 2026")}},
        {"scanning-end", {scanning(48, "LIVE SET 2026")}},
        {"scanning-long", {scanning(31, longLabel)}},
        {"scanning-foreign", {scanning(31, "ПЕСНИ ÅÇỆ 春の歌 노래 أغنية गीत ก็ 🎵")}},
        {"done", {done()}},
        {"done-unreadable", {done({}, 2)}},
        {"done-huge", {huge}},
        {"done-one", {one}},
        {"empty", {empty("NO READABLE AUDIO")}},
        {"empty-nothing", {empty("NO AUDIO FOUND")}},
    };
}

std::map<std::string, Page> controlPages() {
    const ScanState saved = done(ZipDone{"/music/Field Recordings.zip"});
    const ScanState longName = done(ZipDone{"/music/" + std::string(60, 'W') + " audio.zip"});
    const ScanState longError = done(ZipFailed{"Cannot write “/media/ann/Backup/Field Recordings audio.zip”: "
                                               "No space left on device"});
    return {
        {"zipping", {done(ZipWorking{96, 214})}},
        {"saved", {saved}},
        {"saved-long", {longName}},
        {"failed", {done(ZipFailed{"The archive could not be written."})}},
        {"failed-long", {longError}},
        {"copied", {done(), [](Stage& stage) { stage.scan.flash(ScanView::Copied::total); }}},
        {"lit", {done(), [](Stage& stage) { stage.hover("zipButton"); }}},
        {"focus-copy", focus(1, saved)},
        {"focus-reset", focus(4, saved)},
        {"focus-saved", focus(5, saved)},
        {"focus-menu", focus(2, {})},
        {"focus-close", focus(5, {})},
        {"tip-zip", toolTip("zipButton", done())},
        {"tip-reset", toolTip("resetButton", done())},
        {"tip-failed", toolTip("zipLine", longError)},
        {"tip-menu", toolTip("menuButton")},
        {"tip-close", toolTip("closeButton")},
        {"checking", {.arrange = [](Stage& stage) { stage.window->setProperty("checking", true); }}},
        {"contrast", {done(), [](Stage& stage) { stage.window->setProperty("highContrast", true); }}},
        {"menu", {.arrange = [](Stage& stage) { stage.press(Qt::Key_F10); }}},
        {"menu-lit",
         {.arrange =
              [](Stage& stage) {
                  stage.press(Qt::Key_F10);
                  stage.hover("updatesRow");
              }}},
    };
}

std::map<std::string, Page> alertPages() {
    QString longNotes;
    for (int i = 1; i <= 24; ++i) {
        longNotes +=
            QStringLiteral("%1. Reads one more kind of recording, and says how long it plays.\n").arg(i);
    }
    return {
        {"about", about(true, 0)},
        {"about-off", about(false, 1)},
        {"about-without", alert(aboutText({}))},
        {"update", alert(offer(QStringLiteral("Reads more kinds of archives.")))},
        {"update-long", alert(offer(longNotes))},
        {"up-to-date", alert({QStringLiteral("You're up to date"),
                              QStringLiteral("Velmora 1.0.0 is the latest version.")})},
        {"no-update", alert({QStringLiteral("Couldn't check for updates"),
                             QStringLiteral("Check your internet connection and try again.")})},
    };
}

std::map<std::string, Page> detailsPages() {
    const ScanState state = done({}, 4);
    const ScanState nothing = {.phase = ScanModel::Phase::empty,
                               .status = "NO READABLE AUDIO",
                               .source = "SET.ZIP",
                               .missing = "set.zip: archive is damaged"};
    return {
        {"details",
         {state,
          [](Stage& stage) {
              stage.showDetails(Details::Files);
              for (const int row : {2, 3, 24}) {
                  stage.details.rows()->toggle(row);
              }
          }}},
        {"details-folders", {state, [](Stage& stage) { stage.showDetails(Details::Folders); }}},
        {"details-unreadable", {state, [](Stage& stage) { stage.showDetails(Details::Unreadable); }}},
        {"details-search",
         {state,
          [](Stage& stage) {
              stage.showDetails(Details::Files);
              stage.press(Qt::Key_W);
              stage.complete =
                  stage.complete && comesTrue([&] { return stage.details.rows()->count() < 30; });
          }}},
        {"link-lit", {state, [](Stage& stage) { stage.hover("unreadableLine"); }}},
        {"tip-empty",
         {nothing,
          [](Stage& stage) {
              stage.hover("emptyStatus");
              stage.awaitToolTip();
          }}},
    };
}

bool write(const Page& page, const QSize& points, const std::filesystem::path& path) {
    Stage stage;
    stage.scan.show(page.state);
    stage.window->resize(points + QSize(0, static_cast<int>(stage.item("titleBar")->height())));
    stage.window->show();
    stage.window->requestActivate();
    if (!QTest::qWaitForWindowActive(stage.window.get(), patience)) {
        return false;
    }
    QEvent leave(QEvent::Leave); // the pointer is nowhere unless a page says so
    QCoreApplication::sendEvent(stage.window.get(), &leave);
    if (page.arrange) {
        page.arrange(stage);
    }
    for (const char* name : {"waveField", "spectrumStrip"}) {
        stage.item(name)->setProperty("time", Screenshots::shotTime);
    }
    return stage.complete && stage.window->grabWindow()
                                 .convertToFormat(QImage::Format_RGB888)
                                 .save(QString::fromStdString(path), "PNG", 0);
}

int writeAll(const std::filesystem::path& directory, const QSize& points,
             const std::set<std::string>& wanted) {
    std::filesystem::create_directories(directory);
    std::map<std::string, Page> pages = scanPages();
    pages.merge(controlPages());
    pages.merge(alertPages());
    pages.merge(detailsPages());
    pages.merge(panelPages(done()));
    int failures = 0;
    for (const auto& [name, page] : pages) {
        if (wanted.empty() || wanted.contains(name)) {
            failures += write(page, points, directory / (name + ".png")) ? 0 : 1;
        }
    }
    return failures == 0 ? 0 : 1;
}

} // namespace
} // namespace velmora::test

int main(int argc, char** argv) {
    if (argc < 2 || argc == 3) {
        return 2;
    }
    velmora::Screenshots::prepareEnvironment();
    qputenv("TZ", "UTC");
    if (argc > 4) {
        qputenv("QT_SCALE_FACTOR", argv[4]);
    }
    const QGuiApplication application(argc, argv);
    velmora::Views::prepare();
    QLocale::setDefault(QLocale::c()); // dates look the same everywhere
    const QSize points = argc > 3 ? QSize(std::atoi(argv[2]), std::atoi(argv[3])) : QSize(940, 700);
    return velmora::test::writeAll(argv[1], points, {argv + std::min(argc, 5), argv + argc});
}
