#pragma once

// The only window, and everything that lives as long as it: the scan it shows, the actions of its controls,
// the drops on it.

#include "app/ScanNews.h"
#include "app/UpdateAlerts.h"
#include "app/WindowActions.h"
#include "app/desktop/Appearance.h"
#include "app/panels/Panels.h"
#include "scan/ScanModel.h"
#include "ui/content/ScanView.h"
#include "ui/details/Details.h"
#include "ui/panel/FilePanel.h"
#include "ui/window/Alerts.h"

#include <QByteArray>
#include <QQmlApplicationEngine>

class QQuickWindow;

namespace velmora {

class AppDelegate;

/// Created after the application object. Its destructor ends running tools and removes temporary files.
class AppWindow : public QObject {
    Q_OBJECT

public:
    /// Scans the paths that `delegate` keeps, and all that it is given later.
    explicit AppWindow(AppDelegate& delegate);

    /// Whether the window could be made.
    bool isShown() const { return m_window != nullptr; }

    /// Opens the panel in which files and folders are chosen, unless an alert waits for an answer.
    void choose();

    /// Brings the window to the front, or has it ask for the user's attention where the desktop leaves it
    /// where it is. `activationToken` is the desktop's permission to take the focus; it may be empty.
    void raise(const QByteArray& activationToken);

private:
    void take(QQuickWindow* window);

    ScanModel m_model;
    ScanView m_view{m_model};
    Details m_details{m_model};
    Alerts m_alerts;
    FilePanel m_panel;
    Panels m_panels{m_panel, m_alerts};
    WindowActions m_actions{m_model, m_view, m_alerts, m_panels};
    UpdateAlerts m_updates{m_alerts, [this] { raise({}); }};
    Appearance m_appearance;
    QQuickWindow* m_window = nullptr;
    QQmlApplicationEngine m_engine;   // after these: the views need them
    ScanNews m_news{m_model, m_view}; // last: at the end it is taken back before anything is waited for
};

} // namespace velmora
