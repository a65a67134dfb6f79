#include "app/desktop/DroppedFiles.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QMimeData>
#include <QStringList>
#include <QVariantMap>

namespace velmora {

namespace {

const QString uriList = QStringLiteral("text/uri-list");
const QString fileTransfer = QStringLiteral("application/vnd.portal.filetransfer");

constexpr int portalTimeout = 5000; // milliseconds

/// The files that the portal has for `key`; none when it does not answer.
Paths filesFromPortal(const QByteArray& key) {
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Documents"),
                                                       QStringLiteral("/org/freedesktop/portal/documents"),
                                                       QStringLiteral("org.freedesktop.portal.FileTransfer"),
                                                       QStringLiteral("RetrieveFiles"));
    call << QString::fromUtf8(key) << QVariantMap();
    const QDBusMessage answer = QDBusConnection::sessionBus().call(call, QDBus::Block, portalTimeout);
    Paths paths;
    if (answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty()) {
        for (const QString& file : answer.arguments().constFirst().toStringList()) {
            paths.emplace_back(file.toStdString());
        }
    }
    return paths;
}

/// The portal's key, without the NUL that C programs append.
QByteArray keyOf(const QMimeData& data) {
    QByteArray key = data.data(fileTransfer);
    while (key.endsWith('\0')) {
        key.chop(1);
    }
    return key;
}

} // namespace

bool carriesFiles(const QMimeData& data) {
    if (data.hasFormat(fileTransfer)) {
        return true;
    }
    if (!data.hasFormat(uriList)) {
        return false;
    }
    const QByteArray list = data.data(uriList);
    return list.isEmpty() || holdsFileUrl(list);
}

Paths droppedFiles(const QMimeData& data) {
    if (data.hasFormat(fileTransfer)) {
        if (Paths paths = filesFromPortal(keyOf(data)); !paths.empty()) {
            return paths;
        }
    }
    return pathsOfUriList(data.data(uriList));
}

} // namespace velmora
