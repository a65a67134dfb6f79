#include "tests/window/NewsServices.h"

#include <QDBusError>
#include <QDBusMessage>

#include <gtest/gtest.h>

#include <utility>

namespace velmora::test {

namespace {

const QString notifications = "org.freedesktop.Notifications";
const QString notificationsPath = "/org/freedesktop/Notifications";
const QString portalService = "org.freedesktop.portal.Desktop";
const QString portalPath = "/org/freedesktop/portal/desktop";

} // namespace

NotificationServer::NotificationServer(QDBusConnection bus)
    : m_bus(std::move(bus)) {
    EXPECT_TRUE(m_bus.registerObject(notificationsPath, this, QDBusConnection::ExportAllSlots));
    EXPECT_TRUE(m_bus.registerService(notifications));
}

NotificationServer::~NotificationServer() {
    m_bus.unregisterService(notifications);
    m_bus.unregisterObject(notificationsPath);
}

uint NotificationServer::Notify(const QString& application, uint /*replaces*/, const QString& icon,
                                const QString& title, const QString& body, const QStringList& actions,
                                const QVariantMap& hints, int /*lifetime*/) {
    atNotify();
    shown.append({application, icon, title, body, actions, hints});
    return static_cast<uint>(shown.size());
}

void NotificationServer::press(const QString& action, const QString& token) {
    if (!token.isEmpty()) {
        tell("ActivationToken", token);
    }
    tell("ActionInvoked", action);
    dismiss();
}

void NotificationServer::dismiss() {
    tell("NotificationClosed", 2U);
}

void NotificationServer::tell(const QString& signal, const QVariant& what) {
    m_bus.send(QDBusMessage::createSignal(notificationsPath, notifications, signal)
               << static_cast<uint>(shown.size()) << what);
}

InhibitPortal::InhibitPortal(QDBusConnection bus)
    : m_bus(std::move(bus)) {
    EXPECT_TRUE(m_bus.registerObject(portalPath, this, QDBusConnection::ExportAllSlots));
    EXPECT_TRUE(m_bus.registerService(portalService));
}

InhibitPortal::~InhibitPortal() {
    m_bus.unregisterService(portalService);
    m_bus.unregisterObject(portalPath);
}

QDBusObjectPath InhibitPortal::Inhibit(const QString& /*window*/, uint what, const QVariantMap& values) {
    ++asked;
    flags = what;
    options = values;
    if (refuses) {
        sendErrorReply(QDBusError::AccessDenied, "nothing is inhibited here");
        return {};
    }
    const QString path = portalPath + "/request/" + QString::number(asked);
    EXPECT_TRUE(m_bus.registerObject(path, new InhibitRequest(*this), QDBusConnection::ExportAllSlots));
    return QDBusObjectPath(path);
}

Dock::Dock(QDBusConnection bus) {
    EXPECT_TRUE(bus.connect({}, {}, "com.canonical.Unity.LauncherEntry", "Update", this,
                            SLOT(update(QString, QVariantMap))));
}

void Dock::update(const QString& launcher, const QVariantMap& properties) {
    launchers += launcher;
    updates += properties;
}

} // namespace velmora::test
