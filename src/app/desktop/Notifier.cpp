#include "app/desktop/Notifier.h"

#include "app/desktop/BusCall.h"
#include "app/desktop/SingleInstance.h"

#include <QDBusConnection>
#include <QVariantMap>

#include <utility>

namespace velmora {

namespace {

const QString notifications = QStringLiteral("org.freedesktop.Notifications"); // service and interface
const QString notificationsPath = QStringLiteral("/org/freedesktop/Notifications");

const QString pressAction = QStringLiteral("default"); // of the notification itself
const QString buttonAction = QStringLiteral("button");

constexpr int lifetimeOfTheServer = -1; // how long it shows a notification is its own choice

QDBusMessage callTo(const QString& server, const QString& method) {
    return QDBusMessage::createMethodCall(server, notificationsPath, notifications, method);
}

void closeNotification(const QString& server, unsigned id) {
    sendToBus(callTo(server, QStringLiteral("CloseNotification")) << id);
}

/// Identifiers and labels, in turn.
QStringList actionsOf(const Notice& notice) {
    QStringList actions = {pressAction, QStringLiteral("Show Velmora")};
    if (!notice.button.isEmpty()) {
        actions << buttonAction << notice.button;
    }
    return actions;
}

} // namespace

Notifier::Notifier(QObject* parent)
    : QObject(parent) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    const auto follow = [&](const char* signal, const char* slot) { // of any sender: Qt would wait for a name
        bus.connect({}, notificationsPath, notifications, QString::fromLatin1(signal), this, slot);
    };
    if (bus.isConnected()) {
        follow("ActivationToken", SLOT(takeToken(QDBusMessage)));
        follow("ActionInvoked", SLOT(takeAction(QDBusMessage)));
        follow("NotificationClosed", SLOT(takeClosed(QDBusMessage)));
    }
}

Notifier::~Notifier() {
    withdraw();
}

void Notifier::show(const Notice& notice) {
    withdraw();
    callBus(this, callTo(notifications, QStringLiteral("GetCapabilities")),
            [this, notice, question = m_question](const QDBusMessage& reply) {
                if (question == m_question) {
                    notify(notice, reply.arguments().value(0).toStringList());
                }
            });
}

void Notifier::notify(const Notice& notice, const QStringList& capabilities) {
    const bool hasMarkup = capabilities.contains(QLatin1String("body-markup"));
    const bool hasActions = capabilities.contains(QLatin1String("actions"));
    const QString application = QLatin1String(applicationId);
    QDBusMessage call = callTo(notifications, QStringLiteral("Notify"));
    call << QStringLiteral("Velmora") << 0U << application << notice.title
         << (hasMarkup ? notice.body.toHtmlEscaped() : notice.body)
         << (hasActions ? actionsOf(notice) : QStringList())
         << QVariantMap{{QStringLiteral("desktop-entry"), application}} << lifetimeOfTheServer;
    callBus(this, call, [this, question = m_question](const QDBusMessage& reply) {
        const unsigned id = reply.arguments().value(0).toUInt();
        if (question != m_question) {
            closeNotification(reply.service(), id);
            return;
        }
        m_server = reply.service();
        m_id = id;
    });
}

void Notifier::withdraw() {
    ++m_question;
    m_token.clear();
    if (const unsigned id = std::exchange(m_id, 0); id != 0) {
        closeNotification(m_server, id);
    }
}

bool Notifier::isOurs(const QDBusMessage& signal) const {
    return m_id != 0 && signal.service() == m_server && signal.arguments().value(0).toUInt() == m_id;
}

void Notifier::takeToken(const QDBusMessage& signal) {
    if (isOurs(signal)) {
        m_token = signal.arguments().value(1).toString().toUtf8();
    }
}

void Notifier::takeAction(const QDBusMessage& signal) {
    if (!isOurs(signal)) {
        return;
    }
    const QString action = signal.arguments().value(1).toString();
    const QByteArray token = std::exchange(m_token, {});
    if (action == pressAction) {
        emit pressed(token);
    } else if (action == buttonAction) {
        emit buttonPressed(token);
    }
}

void Notifier::takeClosed(const QDBusMessage& signal) {
    if (isOurs(signal)) {
        m_id = 0;
    }
}

} // namespace velmora
