#include "app/desktop/SingleInstance.h"

#include "app/desktop/ApplicationAdaptor.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>

namespace velmora {

namespace {

const QString objectPath = QStringLiteral("/com/orventa/Velmora");

constexpr int handOverTimeout = 5000;    // milliseconds
constexpr unsigned long retryPause = 10; // milliseconds

QString inRuntimeDirectory(const QString& name) {
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + "/" + applicationId + name;
}

QVariantMap platformData() {
    QVariantMap data;
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    const QString startupId = qEnvironmentVariable("DESKTOP_STARTUP_ID");
    if (!token.isEmpty()) {
        data.insert(QStringLiteral("activation-token"), token);
    }
    if (!startupId.isEmpty()) {
        data.insert(QStringLiteral("desktop-startup-id"), startupId);
    }
    return data;
}

/// The call that hands `paths` to the running instance.
QDBusMessage requestFor(const Paths& paths) {
    const QString method = paths.empty() ? QStringLiteral("Activate") : QStringLiteral("Open");
    QDBusMessage call = QDBusMessage::createMethodCall(applicationId, objectPath,
                                                       QStringLiteral("org.freedesktop.Application"), method);
    if (!paths.empty()) {
        QStringList uris;
        for (const std::filesystem::path& path : paths) {
            uris.append(QString::fromLatin1(urlOfPath(path)));
        }
        call << uris;
    }
    return call << platformData();
}

/// Paths on the socket are bytes, each followed by a NUL.
QByteArray joined(const Paths& paths) {
    QByteArray text;
    for (const std::filesystem::path& path : paths) {
        text += QByteArray::fromStdString(path.native()) + '\0';
    }
    return text;
}

Paths split(const QByteArray& text) {
    Paths paths;
    for (const QByteArray& path : text.split('\0')) {
        if (!path.isEmpty()) {
            paths.emplace_back(path.toStdString());
        }
    }
    return paths;
}

/// Tries again for a while: an instance that has only just started may not listen yet.
bool connectTo(const QString& server, QLocalSocket& socket) {
    const QDeadlineTimer deadline(handOverTimeout);
    do {
        socket.connectToServer(server);
        if (socket.waitForConnected(handOverTimeout)) {
            return true;
        }
        QThread::msleep(retryPause);
    } while (!deadline.hasExpired());
    return false;
}

} // namespace

bool SingleInstance::claim(const Paths& paths) {
    return QDBusConnection::sessionBus().isConnected() ? claimOnBus(paths) : claimSocket(paths);
}

void SingleInstance::giveUp() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        bus.unregisterObject(objectPath);
        bus.unregisterService(applicationId);
    }
    m_server.close();
    m_lock.reset();
}

bool SingleInstance::claimOnBus(const Paths& paths) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    new ApplicationAdaptor(this, [this](const Paths& requested, const QByteArray& activationToken) {
        emit this->requested(requested, activationToken);
    });
    bus.registerObject(objectPath, this); // before the name, so that the object exists when the name does
    const auto answer =
        bus.interface()->registerService(applicationId, QDBusConnectionInterface::DontQueueService);
    if (answer.value() == QDBusConnectionInterface::ServiceRegistered) {
        return true;
    }
    bus.unregisterObject(objectPath);
    return bus.call(requestFor(paths), QDBus::Block, handOverTimeout).type() != QDBusMessage::ReplyMessage;
}

bool SingleInstance::claimSocket(const Paths& paths) {
    const QString name = inRuntimeDirectory(QStringLiteral(".socket"));
    m_lock = std::make_unique<QLockFile>(inRuntimeDirectory(QStringLiteral(".lock")));
    m_lock->setStaleLockTime(0); // held as long as its process lives
    if (!m_lock->tryLock()) {
        QLocalSocket socket;
        if (connectTo(name, socket)) {
            socket.write(joined(paths));
            socket.disconnectFromServer(); // after all is written
            return socket.state() != QLocalSocket::UnconnectedState &&
                   !socket.waitForDisconnected(handOverTimeout);
        }
        return true;
    }
    QLocalServer::removeServer(name); // left by a run that was killed
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    m_server.listen(name);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::takeConnection);
    return true;
}

void SingleInstance::takeConnection() {
    QLocalSocket* socket = m_server.nextPendingConnection();
    const auto take = [this, socket] {
        emit requested(split(socket->readAll()), {});
        socket->deleteLater();
    };
    if (socket->state() == QLocalSocket::UnconnectedState) {
        take();
    } else {
        connect(socket, &QLocalSocket::disconnected, this, take);
    }
}

} // namespace velmora
