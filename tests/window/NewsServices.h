#pragma once

// What a desktop offers on the session bus to show what becomes of a scan.

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusObjectPath>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace velmora::test {

/// The notification server: records what it is asked to show. Present while this object lives.
class NotificationServer : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Shown {
        QString application;
        QString icon;
        QString title;
        QString body;
        QStringList actions;
        QVariantMap hints;
    };

    explicit NotificationServer(QDBusConnection bus);
    ~NotificationServer() override;

    /// What the user does to the last notification. The server then closes it, as servers do.
    void press(const QString& action, const QString& token = {});

    /// The notification is closed by the user, or has been there long enough.
    void dismiss();

    QStringList capabilities = {"actions", "body", "body-markup"};

    std::function<void()> atNotify = [] {}; ///< happens before the answer

    QList<Shown> shown;
    QList<uint> closed; ///< the numbers of those that were taken back, from 1 on

public slots:

    // The bus knows it by these names.
    QStringList GetCapabilities() { return capabilities; }

    uint Notify(const QString& application, uint replaces, const QString& icon, const QString& title,
                const QString& body, const QStringList& actions, const QVariantMap& hints, int lifetime);

    void CloseNotification(uint id) { closed += id; }

private:
    void tell(const QString& signal, const QVariant& what);

    QDBusConnection m_bus;
};

/// The portal through which programs keep the machine awake. Present while this object lives.
class InhibitPortal : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Inhibit")

public:
    explicit InhibitPortal(QDBusConnection bus);
    ~InhibitPortal() override;

    /// How many wishes were uttered and not taken back.
    int held() const { return asked - released; }

    bool refuses = false;
    int asked = 0;
    int released = 0;
    uint flags = 0;
    QVariantMap options;

public slots:
    // The bus knows it by this name.
    QDBusObjectPath Inhibit(const QString& window, uint what, const QVariantMap& values);

private:
    QDBusConnection m_bus;
};

/// One wish to keep the machine awake.
class InhibitRequest : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Request")

public:
    explicit InhibitRequest(InhibitPortal& portal)
        : QObject(&portal)
        , m_portal(portal) {}

public slots:

    // The bus knows it by this name.
    void Close() { ++m_portal.released; }

private:
    InhibitPortal& m_portal;
};

/// A dock that shows the progress of programs. It listens while this object lives.
class Dock : public QObject {
    Q_OBJECT

public:
    explicit Dock(QDBusConnection bus);

    bool showsProgress() const { return !updates.isEmpty() && updates.last()["progress-visible"].toBool(); }

    QStringList launchers;      ///< whom each update is about
    QList<QVariantMap> updates; ///< what it says

public slots:
    void update(const QString& launcher, const QVariantMap& properties);
};

} // namespace velmora::test
