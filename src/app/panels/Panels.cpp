#include "app/panels/Panels.h"

#include "app/panels/Places.h"
#include "app/panels/RecentFolders.h"
#include "ui/panel/FilePanel.h"
#include "ui/window/Alerts.h"

#include <QFile>
#include <QStandardPaths>

#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

fs::path standardFolder(QStandardPaths::StandardLocation location) {
    return {QFile::encodeName(QStandardPaths::writableLocation(location)).toStdString()};
}

/// Where a panel begins: at `first`, and where that cannot be read, where music is kept.
Paths beginning(const Paths& first) {
    Paths folders = first;
    folders.push_back(standardFolder(QStandardPaths::MusicLocation));
    folders.push_back(standardFolder(QStandardPaths::HomeLocation));
    return folders;
}

/// The folder that what was chosen was shown in.
fs::path folderOf(const Paths& chosen) {
    return chosen.front().has_relative_path() ? chosen.front().parent_path() : chosen.front();
}

std::function<std::vector<Place>()> placesNow() {
    return [recent = recentFolders()] { return presentPlaces(recent); };
}

} // namespace

Panels::Panels(FilePanel& panel, Alerts& alerts)
    : m_panel(panel)
    , m_alerts(alerts) {}

void Panels::chooseSources(std::function<void(const Paths&)> chosen) {
    m_panel.ask({.message = QStringLiteral("Choose a folder, archive, or audio files"),
                 .prompt = QStringLiteral("Measure"),
                 .folders = beginning({}),
                 .places = placesNow(),
                 .chosen = [this, chosen = std::move(chosen)](const Paths& paths) {
                     m_panel.close();
                     rememberFolder(folderOf(paths));
                     chosen(paths);
                 }});
}

void Panels::chooseZip(const ZipProposal& proposal, const Objection& objection,
                       const std::function<void(const fs::path&)>& chosen) {
    m_panel.ask({.message = QStringLiteral("Save a zip of the %1 audio files").arg(proposal.fileCount),
                 .prompt = QStringLiteral("Zip"),
                 .folders = beginning(proposal.folder ? Paths{*proposal.folder} : Paths()),
                 .name = proposal.name,
                 .ending = ".zip",
                 .places = placesNow(),
                 .chosen = [this, objection, chosen](const Paths& paths) {
                     zipAt(paths.front(), objection, chosen);
                 }});
}

void Panels::zipAt(const fs::path& destination, const Objection& objection,
                   const std::function<void(const fs::path&)>& chosen) {
    if (const std::optional<std::string> reason = objection(destination)) {
        m_alerts.show({.title = QStringLiteral("Choose another name"),
                       .body = QString::fromStdString(*reason) + QStringLiteral(".")});
        return;
    }
    const auto save = [this, destination, chosen] {
        m_panel.close();
        rememberFolder(folderOf({destination}));
        chosen(destination);
    };
    std::error_code error;
    if (!fs::exists(fs::symlink_status(destination, error))) {
        save();
        return;
    }
    m_alerts.show({.title = QStringLiteral("Replace “%1”?").arg(shownName(destination.filename().native())),
                   .body = QStringLiteral("It is there already. What it holds will be lost."),
                   .acceptTitle = QStringLiteral("Replace"),
                   .dismissTitle = QStringLiteral("Cancel"),
                   .accepted = save});
}

void Panels::close() {
    m_panel.close();
}

} // namespace velmora
