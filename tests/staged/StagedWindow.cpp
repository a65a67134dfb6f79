#include "tests/staged/StagedWindow.h"

#include "ui/Views.h"
#include "ui/content/Actions.h"
#include "ui/content/ScanView.h"
#include "ui/details/Details.h"
#include "ui/window/Alerts.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QVariant>

namespace velmora::test {

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
        {"animated", animated},
    }));
    if (window == nullptr) {
        qFatal("%s", qPrintable(component.errorString()));
    }
    return std::unique_ptr<QQuickWindow>(window);
}

QList<QQuickItem*> visibleToolTips(const QQuickWindow& window) {
    QList<QQuickItem*> items = window.findChildren<QQuickItem*>();
    items.removeIf(
        [](const QQuickItem* item) { return !item->property("wanted").isValid() || !item->isVisible(); });
    return items;
}

} // namespace velmora::test
