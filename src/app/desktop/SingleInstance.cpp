#include "app/desktop/SingleInstance.h"

#include "app/desktop/ApplicationAdaptor.h"
#include "app/desktop/FileUrls.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>

#include <utility>

namespace velmora {

namespace {

const QString objectPath = QStringLiteral("/com/orventa/Velmora");

constexpr int handOverTimeout = 5000;    // milliseconds
constexpr unsigned long retryPause = 10; // milliseconds

QString inRuntimeDirectory(const QString& name) {
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + "/" + applicationId + name;
}

QVariantMap platformData(const QByteArray& activationToken) {
    if (activationToken.isEmpty()) {
        return {};
    }
    const QString token = QString::fromUtf8(activationToken);
    return {{QStringLiteral("activation-token"), token}, {QStringLiteral("desktop-startup-id"), token}};
}

QStringList urisOf(const Paths& paths) {
    QStringList uris;
    for (const std::filesystem::path& path : paths) {
        uris.append(QString::fromLatin1(urlOfPath(path)));
    }
    return uris;
}

/// Calls `method` of the running instance. Whether it answers.
bool call(const QString& method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        applicationId, objectPath, QStringLiteral("org.freedesktop.Application"), method);
    message.setArguments(arguments);
    return QDBusConnection::sessionBus().call(message, QDBus::Block, handOverTimeout).type() ==
           QDBusMessage::ReplyMessage;
}

/// Gives `request` to the running instance over the bus. Whether it has taken it.
bool handOver(const LaunchRequest& request) {
    const QVariantMap data = platformData(request.activationToken);
    if (!request.paths.empty() && !call(QStringLiteral("Open"), {urisOf(request.paths), data})) {
        return false;
    }
    if (request.choose) {
        return call(QStringLiteral("ActivateAction"), {chooseAction, QVariantList(), data});
    }
    return !request.paths.empty() || call(QStringLiteral("Activate"), {data});
}

/// A request on the socket: the action or nothing, the token or nothing, paths; each is bytes, followed by a
/// NUL.
QByteArray joined(const LaunchRequest& request) {
    QByteArray text = QByteArray(request.choose ? chooseAction : "") + '\0' + request.activationToken + '\0';
    for (const std::filesystem::path& path : request.paths) {
        text += QByteArray::fromStdString(path.native()) + '\0';
    }
    return text;
}

/// Absent where `text` is cut off before its paths.
std::optional<LaunchRequest> split(const QByteArray& text) {
    QList<QByteArray> fields = text.split('\0');
    if (fields.size() < 3) {
        return std::nullopt;
    }
    LaunchRequest request;
    request.choose = fields.takeFirst() == chooseAction;
    request.activationToken = fields.takeFirst();
    fields.removeLast(); // what follows the last NUL
    for (const QByteArray& path : std::as_const(fields)) {
        request.paths.emplace_back(path.toStdString());
    }
    return request;
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

bool SingleInstance::claim(const std::optional<LaunchRequest>& request) {
    return QDBusConnection::sessionBus().isConnected() ? claimOnBus(request) : claimSocket(request);
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

bool SingleInstance::claimOnBus(const std::optional<LaunchRequest>& request) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    new ApplicationAdaptor(this, [this](const LaunchRequest& asked) { emit requested(asked); });
    bus.registerObject(objectPath, this); // before the name, so that the object exists when the name does
    const auto answer =
        bus.interface()->registerService(applicationId, QDBusConnectionInterface::DontQueueService);
    if (answer.value() == QDBusConnectionInterface::ServiceRegistered) {
        return true;
    }
    bus.unregisterObject(objectPath);
    return request && !handOver(*request);
}

bool SingleInstance::claimSocket(const std::optional<LaunchRequest>& request) {
    const QString name = inRuntimeDirectory(QStringLiteral(".socket"));
    m_lock = std::make_unique<QLockFile>(inRuntimeDirectory(QStringLiteral(".lock")));
    m_lock->setStaleLockTime(0); // held as long as its process lives
    if (!m_lock->tryLock()) {
        if (!request) {
            return false;
        }
        QLocalSocket socket;
        if (connectTo(name, socket)) {
            socket.write(joined(*request));
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
        if (const std::optional<LaunchRequest> request = split(socket->readAll())) {
            emit requested(*request);
        }
        socket->deleteLater();
    };
    if (socket->state() == QLocalSocket::UnconnectedState) {
        take();
    } else {
        connect(socket, &QLocalSocket::disconnected, this, take);
    }
}

} // namespace velmora
