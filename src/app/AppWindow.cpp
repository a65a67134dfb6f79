#include "app/AppWindow.h"

#include "app/AppDelegate.h"
#include "app/desktop/DropTarget.h"
#include "app/desktop/StartupNotification.h"
#include "app/desktop/WindowCover.h"
#include "ui/Views.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QScreen>
#include <QVariant>

namespace velmora {

AppWindow::AppWindow(AppDelegate& delegate) {
    m_actions.setUpdates(&m_updates);
    m_engine.setInitialProperties({
        {"scan", QVariant::fromValue(&m_view)},
        {"actions", QVariant::fromValue<Actions*>(&m_actions)},
        {"alerts", QVariant::fromValue(&m_alerts)},
        {"details", QVariant::fromValue(&m_details)},
        {"panel", QVariant::fromValue(&m_panel)},
        {"workArea", QSizeF(QGuiApplication::primaryScreen()->availableSize())},
        {"animated", m_appearance.animated()},
        {"highContrast", m_appearance.highContrast()},
        {"visible", true},
    });
    m_engine.load(Views::url("MainWindow"));
    if (m_engine.rootObjects().isEmpty()) {
        return;
    }
    take(qobject_cast<QQuickWindow*>(m_engine.rootObjects().constFirst()));

    connect(&delegate, &AppDelegate::openURLs, this, [this, &delegate](const Paths& paths) {
        delegate.takePending();
        m_actions.start(paths);
    });
    m_updates.checkQuietly();
    m_actions.start(delegate.takePending());
}

void AppWindow::take(QQuickWindow* window) {
    m_window = window;
    m_actions.setWindow(window);
    m_panels.setWindow(window);
    const auto* drops = new DropTarget(window);
    connect(drops, &DropTarget::hovered, &m_view, &ScanView::setTargeted);
    connect(drops, &DropTarget::dropped, &m_actions, &WindowActions::start);
    m_news.setWindow(window);
    connect(&m_news, &ScanNews::windowWanted, this, &AppWindow::raise);
    connect(&m_news, &ScanNews::zipWanted, &m_actions, &WindowActions::showZip);
    const auto* cover = new WindowCover(window);
    connect(cover, &WindowCover::changed, window,
            [window, cover] { window->setProperty("covered", cover->covered()); });
    connect(&m_appearance, &Appearance::changed, window, [this, window] {
        window->setProperty("animated", m_appearance.animated());
        window->setProperty("highContrast", m_appearance.highContrast());
    });
    connect(&m_updates, &UpdateAlerts::checking, window,
            [window](bool checking) { window->setProperty("checking", checking); });
}

void AppWindow::choose() {
    if (!m_alerts.open()) {
        m_actions.choose();
    }
}

void AppWindow::raise(const QByteArray& activationToken) {
    if (!activationToken.isEmpty()) {
        qputenv("XDG_ACTIVATION_TOKEN", activationToken); // where Qt's Wayland plug-in looks for it
    }
    m_window->setWindowStates(m_window->windowStates() & ~Qt::WindowMinimized); // if need be
    m_window->raise();
    m_window->requestActivate();
    completeStartup(*m_window, activationToken);
    m_window->alert(0); // until it gets the focus
}

} // namespace velmora
