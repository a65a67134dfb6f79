#include "app/panels/PortalSave.h"

#include "app/desktop/FileUrls.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QStringList>
#include <QUuid>
#include <QWindow>

#include <utility>

namespace velmora {

/// One pattern of names in a filter: kind 0 is a glob. (us) on the bus.
struct PortalPattern {
    uint kind = 0;
    QString pattern;
};

/// (sa(us)) on the bus.
struct PortalFilter {
    QString name;
    QList<PortalPattern> patterns;
};

QDBusArgument& operator<<(QDBusArgument& to, const PortalPattern& pattern) {
    to.beginStructure();
    to << pattern.kind << pattern.pattern;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, PortalPattern& pattern) {
    from.beginStructure();
    from >> pattern.kind >> pattern.pattern;
    from.endStructure();
    return from;
}

QDBusArgument& operator<<(QDBusArgument& to, const PortalFilter& filter) {
    to.beginStructure();
    to << filter.name << filter.patterns;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, PortalFilter& filter) {
    from.beginStructure();
    from >> filter.name >> filter.patterns;
    from.endStructure();
    return from;
}

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");

constexpr int portalPatience = 5000; // milliseconds

/// What the portal answers (Request.Response).
enum Response : uint { accepted, cancelled };

/// The window over which the dialog is shown, as portals name windows. Wayland has no name for one that needs
/// no further protocol; the dialog then stands alone.
QString nameOf(const QWindow* window) {
    const bool isX11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>() != nullptr;
    return isX11 && window != nullptr ? QStringLiteral("x11:%1").arg(window->winId(), 0, 16) : QString();
}

QVariantMap optionsFor(const PortalSave::Question& question, const QString& token) {
    qDBusRegisterMetaType<PortalPattern>();
    qDBusRegisterMetaType<QList<PortalPattern>>();
    qDBusRegisterMetaType<PortalFilter>();
    qDBusRegisterMetaType<QList<PortalFilter>>();
    const QList<PortalFilter> filters = {{question.kind, {{0, question.pattern}}}};
    QVariantMap options = {{QStringLiteral("handle_token"), token},
                           {QStringLiteral("accept_label"), question.acceptLabel},
                           {QStringLiteral("modal"), true},
                           {QStringLiteral("current_name"), question.name},
                           {QStringLiteral("filters"), QVariant::fromValue(filters)}};
    if (question.folder) { // bytes, with the NUL at their end
        const std::string& folder = question.folder->native();
        options.insert(QStringLiteral("current_folder"),
                       QByteArray(folder.c_str(), static_cast<qsizetype>(folder.size() + 1)));
    }
    return options;
}

/// The object on which the answer to a question with this `token` is announced.
QString requestPath(const QDBusConnection& bus, const QString& token) {
    const QString sender = bus.baseService().mid(1).replace(u'.', u'_');
    return portalPath + QStringLiteral("/request/") + sender + u'/' + token;
}

} // namespace

PortalSave::PortalSave(QObject* parent)
    : QObject(parent) {
    m_portal.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&m_portal, &QDBusServiceWatcher::serviceUnregistered, this, &PortalSave::fail);
}

void PortalSave::ask(const QWindow* window, const Question& question, Answer answer) {
    close();
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        answer.failed();
        return;
    }
    const QString token = QStringLiteral("velmora") + QUuid::createUuid().toString(QUuid::Id128);
    m_answer = std::move(answer);
    m_request = requestPath(bus, token);
    m_portal.setConnection(bus);
    m_portal.addWatchedService(portalService);
    bus.connect({}, m_request, requestInterface, QStringLiteral("Response"), this,
                SLOT(takeResponse(uint, QVariantMap))); // before the answer can come

    QDBusMessage call = QDBusMessage::createMethodCall(portalService, portalPath,
                                                       QStringLiteral("org.freedesktop.portal.FileChooser"),
                                                       QStringLiteral("SaveFile"));
    call << nameOf(window) << question.title << optionsFor(question, token);
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, portalPatience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, asked = m_request] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        if (asked != m_request) {
            return; // answered or taken back
        }
        if (reply.isError()) {
            fail();
        }
    });
}

void PortalSave::close() {
    if (!m_request.isEmpty()) {
        QDBusConnection::sessionBus().send(QDBusMessage::createMethodCall(
            portalService, m_request, requestInterface, QStringLiteral("Close")));
        end();
    }
}

void PortalSave::takeResponse(uint response, const QVariantMap& results) {
    if (response == cancelled) {
        end();
        return;
    }
    const QStringList uris = results.value(QStringLiteral("uris")).toStringList();
    const auto path = uris.isEmpty() ? std::nullopt : pathOfUrl(uris.constFirst().toUtf8());
    if (response != accepted || !path) {
        fail();
        return;
    }
    end();
    std::exchange(m_answer, {}).chosen(*path);
}

void PortalSave::end() {
    QDBusConnection::sessionBus().disconnect({}, m_request, requestInterface, QStringLiteral("Response"),
                                             this, SLOT(takeResponse(uint, QVariantMap)));
    m_portal.removeWatchedService(portalService);
    m_request.clear();
}

void PortalSave::fail() {
    if (!m_request.isEmpty()) {
        end();
        std::exchange(m_answer, {}).failed();
    }
}

} // namespace velmora
