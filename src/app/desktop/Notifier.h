#pragma once

// A notification of the desktop, for a user who looks elsewhere.

#include <QByteArray>
#include <QDBusMessage> // the slots need the whole type
#include <QObject>
#include <QString>
#include <QStringList>

namespace velmora {

struct Notice {
    QString title;
    QString body;        ///< plain text
    QString button = {}; ///< its label; empty: no button
};

/// Shows one notification at a time, by the Desktop Notifications Specification 1.2
/// (org.freedesktop.Notifications on the session bus). Without a server nothing is shown. A server that
/// knows no actions shows no button, and the notification cannot be pressed. Main thread.
class Notifier : public QObject {
    Q_OBJECT

public:
    explicit Notifier(QObject* parent = nullptr);

    /// Takes the notification back.
    ~Notifier() override;

    /// Shows `notice` in place of what is shown. Returns at once.
    void show(const Notice& notice);

    /// Takes back what is shown, or is about to be.
    void withdraw();

signals:
    /// The user pressed the notification, or its button. `activationToken` lets a window take the focus,
    /// where the desktop asks for one; empty if it gave none.
    void pressed(const QByteArray& activationToken);
    void buttonPressed(const QByteArray& activationToken);

private slots:
    void takeToken(const QDBusMessage& signal);
    void takeAction(const QDBusMessage& signal);
    void takeClosed(const QDBusMessage& signal);

private:
    void notify(const Notice& notice, const QStringList& capabilities);
    bool isOurs(const QDBusMessage& signal) const;

    unsigned m_question = 0; ///< counts what was asked of servers; answers to earlier questions are stale
    QString m_server;        ///< the one that shows the notification, by its unique name
    unsigned m_id = 0;       ///< the notification's; 0 while none is shown
    QByteArray m_token;
};

} // namespace velmora
