#include "tests/staged/StagedWindow.h"

#include "ui/Views.h"
#include "ui/content/Actions.h"
#include "ui/content/ScanView.h"
#include "ui/window/Alerts.h"

#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickWindow>
#include <QVariant>

namespace velmora::test {

std::unique_ptr<QQuickWindow> stageWindow(QQmlEngine& engine, ScanView& scan, Actions& actions,
                                          Alerts& alerts, bool animated) {
    QQmlComponent component(&engine, Views::url("MainWindow"));
    auto* const window = qobject_cast<QQuickWindow*>(component.createWithInitialProperties({
        {"scan", QVariant::fromValue(&scan)},
        {"actions", QVariant::fromValue(&actions)},
        {"alerts", QVariant::fromValue(&alerts)},
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
