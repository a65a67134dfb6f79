#include "app/desktop/FileReveal.h"

#include "app/desktop/FileUrls.h"
#include "system/RegularFile.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QDesktopServices>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <functional>
#include <optional>
#include <utility>

namespace velmora {

namespace {

constexpr int answerTimeout = 5000; // milliseconds until a service counts as absent

/// Makes the call without waiting; `otherwise` runs when it failed.
void ask(const QDBusMessage& call, std::function<void()> otherwise) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        otherwise();
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, answerTimeout));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [watcher, otherwise = std::move(otherwise)] {
                         watcher->deleteLater();
                         if (watcher->isError()) {
                             otherwise();
                         }
                     });
}

void openFolderOf(const std::filesystem::path& file) {
    QDesktopServices::openUrl(QUrl::fromEncoded(urlOfPath(file.parent_path())));
}

void askPortal(const std::filesystem::path& file) {
    const std::optional<RegularFile> open = RegularFile::open(file);
    if (!open) {
        openFolderOf(file);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.OpenURI"), QStringLiteral("OpenDirectory"));
    call << QString() << QVariant::fromValue(QDBusUnixFileDescriptor(open->descriptor())) << QVariantMap();
    ask(call, [file] { openFolderOf(file); });
}

} // namespace

void revealFile(const std::filesystem::path& file) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList(QString::fromLatin1(urlOfPath(file))) << QString();
    ask(call, [file] { askPortal(file); });
}

} // namespace velmora
