#include "app/desktop/ReducedMotion.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace velmora {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString object = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");

const QString gnomeGroup = QStringLiteral("org.gnome.desktop.interface");
const QString gnomeKey = QStringLiteral("enable-animations");
const QString kdeGroup = QStringLiteral("org.kde.kdeglobals.KDE");
const QString kdeKey = QStringLiteral("AnimationDurationFactor");

/// `Read` wraps its answer in a variant of a variant.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

} // namespace

ReducedMotion::ReducedMotion(QObject* parent)
    : QObject(parent) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    bus.connect(service, object, interface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    ask(gnomeGroup, gnomeKey);
    ask(kdeGroup, kdeKey);
}

void ReducedMotion::ask(const QString& group, const QString& key) {
    QDBusMessage call = QDBusMessage::createMethodCall(service, object, interface, QStringLiteral("Read"));
    call << group << key;
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, group, key] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (!reply.isError()) {
            settingChanged(group, key, reply.value());
        }
    });
}

void ReducedMotion::settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
    const QVariant setting = unwrapped(value.variant());
    bool animated = m_animated;
    if (group == gnomeGroup && key == gnomeKey) {
        animated = setting.toBool();
    } else if (group == kdeGroup && key == kdeKey) {
        animated = setting.toDouble() > 0;
    }
    if (animated != m_animated) {
        m_animated = animated;
        emit changed();
    }
}

} // namespace velmora
