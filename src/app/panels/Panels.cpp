#include "app/panels/Panels.h"

#include "app/panels/Places.h"
#include "app/panels/RecentFolders.h"
#include "system/FileName.h"
#include "ui/kit/ShownName.h"
#include "ui/panel/FilePanel.h"
#include "ui/window/Alerts.h"

#include <QFile>
#include <QStandardPaths>

#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

const QString zipPrompt = QStringLiteral("Zip");
const QString objectionTitle = QStringLiteral("Choose another name");

QString zipMessage(const ZipProposal& proposal) {
    return QStringLiteral("Save a zip of the %1 audio files").arg(proposal.fileCount);
}

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
}

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
    if (m_panel.isOpen() && !m_panel.saving()) {
        return;
    }
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
    const auto take = [=, this](fs::path path) {
        const bool isNamedZip = classifyingExtension(path) == "zip";
        path += isNamedZip ? "" : ".zip";
        if (const std::optional<std::string> reason = objection(path)) {
            m_alerts.show({.title = objectionTitle,
                           .body = QString::fromStdString(*reason) + QStringLiteral("."),
                           .acceptTitle = QStringLiteral("Choose"),
                           .dismissTitle = QStringLiteral("Cancel"),
                           .accepted = [=, this] { chooseZip(proposal, objection, chosen); }});
        } else if (isNamedZip || !isThere(path)) {
            chosen(path); // the dialog has asked whether to replace what it names
        } else {
            askToReplace(path, [=] { chosen(path); });
        }
    };
    m_portal.ask(m_window,
                 {.title = zipMessage(proposal),
                  .acceptLabel = zipPrompt,
                  .name = QString::fromStdString(proposal.name),
                  .folder = proposal.folder,
                  .kind = QStringLiteral("Zip archives"),
                  .pattern = QStringLiteral("*.zip")},
                 {.chosen = take, .failed = [=, this] { chooseZipInPanel(proposal, objection, chosen); }});
}

void Panels::chooseZipInPanel(const ZipProposal& proposal, const Objection& objection,
                              const std::function<void(const fs::path&)>& chosen) {
    m_panel.ask({.message = zipMessage(proposal),
                 .prompt = zipPrompt,
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
        m_alerts.show(
            {.title = objectionTitle, .body = QString::fromStdString(*reason) + QStringLiteral(".")});
        return;
    }
    const auto save = [this, destination, chosen] {
        m_panel.close();
        rememberFolder(folderOf({destination}));
        chosen(destination);
    };
    if (isThere(destination)) {
        askToReplace(destination, save);
    } else {
        save();
    }
}

void Panels::askToReplace(const fs::path& destination, std::function<void()> replace) {
    m_alerts.show({.title = QStringLiteral("Replace “%1”?").arg(shownName(destination.filename().native())),
                   .body = QStringLiteral("It is there already. What it holds will be lost."),
                   .acceptTitle = QStringLiteral("Replace"),
                   .dismissTitle = QStringLiteral("Cancel"),
                   .accepted = std::move(replace)});
}

void Panels::close() {
    m_portal.close();
    m_panel.close();
}

} // namespace velmora
