#pragma once

// What the window's controls do.

#include "app/desktop/FileUrls.h"
#include "ui/content/Actions.h"
#include "ui/window/Alerts.h"

#include <functional>

class QWindow;

namespace velmora {

class Panels;
class ScanModel;
class ScanView;

/// The alert of "About Velmora".
AlertText aboutText();

class WindowActions : public Actions {
    Q_OBJECT

public:
    /// All of these outlive the actions.
    WindowActions(ScanModel& model, ScanView& view, Alerts& alerts, Panels& panels);

    /// The window that these are the actions of; none until it exists.
    void setWindow(QWindow* window) { m_window = window; }

    /// What "Check for Updates…" does.
    void setUpdateCheck(std::function<void()> check) { m_checkForUpdates = std::move(check); }

    /// Scans `paths`; a file panel that is open closes. Every scan starts here.
    void start(const velmora::Paths& paths);

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
    ScanModel& m_model;
    ScanView& m_view;
    Alerts& m_alerts;
    Panels& m_panels;
    QWindow* m_window = nullptr;
    std::function<void()> m_checkForUpdates;
};

} // namespace velmora
