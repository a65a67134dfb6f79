#include "app/desktop/Appearance.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace velmora {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString object = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");

const QString standardGroup = QStringLiteral("org.freedesktop.appearance");
const QString motionKey = QStringLiteral("reduced-motion"); // 0: no preference, 1: reduced
const QString contrastKey = QStringLiteral("contrast");     // 0: no preference, 1: higher
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

Appearance::Appearance(QObject* parent)
    : QObject(parent) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    bus.connect(service, object, interface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QDBusMessage)));
    ask(standardGroup, motionKey);
    ask(standardGroup, contrastKey);
    ask(gnomeGroup, gnomeKey);
    ask(kdeGroup, kdeKey);
}

void Appearance::ask(const QString& group, const QString& key) {
    QDBusMessage call = QDBusMessage::createMethodCall(service, object, interface, QStringLiteral("Read"));
    call << group << key;
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, group, key] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (!reply.isError()) {
            take(group, key, reply.value().variant());
        }
    });
}

void Appearance::settingChanged(const QDBusMessage& signal) {
    const QVariantList arguments = signal.arguments();
    if (arguments.size() == 3) {
        take(arguments[0].toString(), arguments[1].toString(), arguments[2]);
    }
}

void Appearance::take(const QString& group, const QString& key, const QVariant& value) {
    const QVariant setting = unwrapped(value);
    if (group == standardGroup && key == motionKey) {
        m_reducedMotion = setting.toUInt() == 1;
    } else if (group == standardGroup && key == contrastKey) {
        m_highContrast = setting.toUInt() == 1;
    } else if (group == gnomeGroup && key == gnomeKey) {
        m_gnomeAnimates = setting.toBool();
    } else if (group == kdeGroup && key == kdeKey) {
        m_kdeAnimates = setting.toDouble() > 0;
    } else {
        return;
    }
    emit changed();
}

} // namespace velmora
