#pragma once

// What the window's controls do.

#include "app/desktop/FileUrls.h"
#include "ui/content/Actions.h"
#include "ui/window/Alerts.h"

#include <optional>

class QWindow;

namespace velmora {

class Panels;
class ScanModel;
class ScanView;
class UpdateAlerts;

/// The alert of "About Velmora", with a setting where there is one to show.
AlertText aboutText(std::optional<AlertSwitch> setting);

class WindowActions : public Actions {
    Q_OBJECT

public:
    /// All of these outlive the actions.
    WindowActions(ScanModel& model, ScanView& view, Alerts& alerts, Panels& panels);

    /// The window that these are the actions of; none until it exists.
    void setWindow(QWindow* window) { m_window = window; }

    /// What "Check for Updates…" does, and the setting in "About Velmora". None until they exist.
    void setUpdates(UpdateAlerts* updates) { m_updates = updates; }

    /// Scans `paths`; a file panel that is open closes. Every scan starts here.
    void start(const velmora::Paths& paths);

    /// As `revealZip`; with `activationToken` the file manager may take the focus.
    void showZip(const QByteArray& activationToken);

    void choose() override;
    void copyRuntime() override;
    void copyFileList() override;
    void zip() override;
    void reset() override;
    void revealZip() override;
    void copyText(const QByteArray& text) override;
    void reveal(const QByteArray& path) override;
    void checkForUpdates() override;
    void about() override;
    void quit() override;

private:
    void showInFolder(const QByteArray& path, const QByteArray& activationToken);

    ScanModel& m_model;
    ScanView& m_view;
    Alerts& m_alerts;
    Panels& m_panels;
    QWindow* m_window = nullptr;
    UpdateAlerts* m_updates = nullptr;
};

} // namespace velmora
