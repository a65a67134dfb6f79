#include "app/desktop/SuspendInhibitor.h"

#include "app/desktop/BusCall.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QVariantMap>

#include <utility>

namespace velmora {

namespace {

constexpr unsigned flagSuspend = 4; // of the portal's flags

void closeRequest(const QString& portal, const QString& request) {
    sendToBus(QDBusMessage::createMethodCall(
        portal, request, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Close")));
}

} // namespace

SuspendInhibitor::~SuspendInhibitor() {
    release();
}

void SuspendInhibitor::hold(const QString& reason) {
    if (std::exchange(m_held, true)) {
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Inhibit"), QStringLiteral("Inhibit"));
    call << QString() << flagSuspend << QVariantMap{{QStringLiteral("reason"), reason}};
    callBus(this, call, [this, question = m_question](const QDBusMessage& reply) {
        const QString request = reply.arguments().value(0).value<QDBusObjectPath>().path();
        if (question != m_question) {
            closeRequest(reply.service(), request);
            return;
        }
        m_portal = reply.service();
        m_request = request;
    });
}

void SuspendInhibitor::release() {
    if (std::exchange(m_held, false)) {
        ++m_question;
        if (const QString request = std::exchange(m_request, {}); !request.isEmpty()) {
            closeRequest(m_portal, request);
        }
    }
}

} // namespace velmora
