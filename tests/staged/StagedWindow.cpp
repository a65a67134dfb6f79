#include "tests/staged/StagedWindow.h"

#include "ui/Views.h"
#include "ui/content/Actions.h"
#include "ui/content/ScanView.h"
#include "ui/details/Details.h"
#include "ui/panel/FilePanel.h"
#include "ui/window/Alerts.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QVariant>

namespace velmora::test {

namespace {

FolderContents madeUpFolder(const std::filesystem::path& folder) {
    constexpr std::int64_t june = 1'780'000'000; // of 2026
    const auto track = [](const char* name, std::int64_t megabytes) {
        return ListedFile{name, ListedKind::audio, megabytes * 1'000'000, june + megabytes * 3'607};
    };
    return {
        .folder = folder,
        .files = {{"Field recordings", ListedKind::folder, -1, june},
                  {"Harbour", ListedKind::folder, -1, june - 86'400},
                  {"Live Set 2026", ListedKind::folder, -1, june + 40'000},
                  track("01 Opening.flac", 31),
                  track("02 Night train.flac", 48),
                  track("03 A very long title that goes on and on, with remarks about its place, its weather "
                        "and those who were there.flac",
                        52),
                  track("10 Finale.wav", 412),
                  {"cover.jpg", ListedKind::other, 93'000, june},
                  {"set.zip", ListedKind::archive, 1'290'000'000, june + 7'200}}};
}

} // namespace

std::unique_ptr<QQuickWindow> stageWindow(QQmlEngine& engine, ScanView& scan, Actions& actions,
                                          Alerts& alerts, bool animated, Details* details) {
    if (details == nullptr) {
        details = new Details(&engine);
    }
    QQmlComponent component(&engine, Views::url("MainWindow"));
    auto* const window = qobject_cast<QQuickWindow*>(component.createWithInitialProperties({
        {"scan", QVariant::fromValue(&scan)},
        {"actions", QVariant::fromValue(&actions)},
        {"alerts", QVariant::fromValue(&alerts)},
        {"details", QVariant::fromValue(details)},
        {"panel", QVariant::fromValue(new FilePanel(&madeUpFolder, &engine))},
        {"animated", animated},
    }));
    if (window == nullptr) {
        qFatal("%s", qPrintable(component.errorString()));
    }
    return std::unique_ptr<QQuickWindow>(window);
}

FilePanel& panelOf(const QQuickWindow& window) {
    return *window.property("panel").value<FilePanel*>();
}

QList<QQuickItem*> visibleToolTips(const QQuickWindow& window) {
    QList<QQuickItem*> items = window.findChildren<QQuickItem*>();
    items.removeIf(
        [](const QQuickItem* item) { return !item->property("wanted").isValid() || !item->isVisible(); });
    return items;
}

} // namespace velmora::test
