#include "app/desktop/BusCall.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace velmora {

void callBus(QObject* context, const QDBusMessage& call,
             std::function<void(const QDBusMessage& reply)> answered) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, answered = std::move(answered)] {
                         watcher->deleteLater();
                         if (!watcher->isError()) {
                             answered(watcher->reply());
                         }
                     });
}

void sendToBus(QDBusMessage message) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        message.setAutoStartService(false);
        bus.send(message);
    }
}

} // namespace velmora
