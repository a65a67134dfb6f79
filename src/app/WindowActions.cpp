#include "app/WindowActions.h"

#include "app/UpdateAlerts.h"
#include "app/desktop/FileReveal.h"
#include "app/panels/Panels.h"
#include "scan/ScanModel.h"
#include "ui/content/ScanView.h"
#include "ui/kit/ShownName.h"
#include "update/UpdateChecker.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QWindow>

#include <utility>
#include <variant>

namespace velmora {

AlertText aboutText(std::optional<AlertSwitch> setting) {
    return {.title = QStringLiteral("Velmora %1").arg(UpdateChecker::currentVersion()),
            .body =
                QStringLiteral("How long does all this audio play?\n\nDrop files, folders or archives on the "
                               "window and read the total.\n\nBy Orventa, under the MIT licence.\n"
                               "Source: " VELMORA_HOMEPAGE),
            .setting = std::move(setting)};
}

WindowActions::WindowActions(ScanModel& model, ScanView& view, Alerts& alerts, Panels& panels)
    : m_model(model)
    , m_view(view)
    , m_alerts(alerts)
    , m_panels(panels) {}

void WindowActions::start(const Paths& paths) {
    if (!paths.empty()) {
        m_panels.close(); // what it asks may be about the scan that ends here
    }
    m_model.ingest(paths);
}

void WindowActions::choose() {
    m_panels.chooseSources([this](const Paths& paths) { start(paths); });
}

void WindowActions::copyRuntime() {
    copyText(QByteArray::fromStdString(m_model.totalText()));
    m_view.flash(ScanView::Copied::total);
}

void WindowActions::copyFileList() {
    copyText(QByteArray::fromStdString(m_model.fileListText()));
    m_view.flash(ScanView::Copied::list);
}

void WindowActions::zip() {
    const ZipProposal proposal{m_model.suggestedZipName(), m_model.suggestedZipDirectory(),
                               static_cast<int>(m_model.summary().files.size())};
    m_panels.chooseZip(
        proposal, [this](const std::filesystem::path& path) { return m_model.objectionToZip(path); },
        [this](const std::filesystem::path& path) { m_model.makeZip(path); });
}

void WindowActions::reset() {
    m_panels.close();
    m_model.reset();
}

void WindowActions::revealZip() {
    showZip({});
}

void WindowActions::showZip(const QByteArray& activationToken) {
    if (const auto* saved = std::get_if<ZipDone>(&m_model.zipState())) {
        showInFolder(QByteArray::fromStdString(saved->path.native()), activationToken);
    }
}

void WindowActions::reveal(const QByteArray& path) {
    if (!path.isEmpty()) {
        showInFolder(path, {});
    }
}

void WindowActions::showInFolder(const QByteArray& path, const QByteArray& activationToken) {
    const auto failed = [this, path] {
        m_alerts.show(
            {.title = QStringLiteral("No file manager answers"),
             .body = QStringLiteral("The file is here:\n\n") +
                     shownName(std::string_view(path.data(), static_cast<std::size_t>(path.size()))),
             .acceptTitle = QStringLiteral("Copy path"),
             .dismissTitle = QStringLiteral("OK"),
             .accepted = [this, path] { copyText(path); }});
    };
    revealFile(path.toStdString(), failed, activationToken);
}

void WindowActions::copyText(const QByteArray& text) {
    auto* const data = new QMimeData;                  // the clipboard's own
    data->setData(QStringLiteral("text/plain"), text); // as a text, it would lose bytes that are not UTF-8
    QGuiApplication::clipboard()->setMimeData(data);
}

void WindowActions::checkForUpdates() {
    if (m_updates != nullptr) {
        m_updates->checkInteractively();
    }
}

void WindowActions::about() {
    m_alerts.show(aboutText(m_updates != nullptr ? m_updates->quietCheckSwitch() : std::nullopt));
}

void WindowActions::quit() {
    if (m_window != nullptr) {
        m_window->close(); // closing the window ends the program
    }
}

} // namespace velmora
