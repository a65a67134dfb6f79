#include "app/desktop/FileReveal.h"

#include "app/desktop/FileUrls.h"
#include "system/RegularFile.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QProcess>
#include <QStringList>
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

/// The opener has no parent, so that what it starts outlives the program.
void openFolderOf(const std::filesystem::path& file, std::function<void()> failed) {
    auto* opener = new QProcess;
    opener->setStandardInputFile(QProcess::nullDevice());
    opener->setStandardOutputFile(QProcess::nullDevice());
    opener->setStandardErrorFile(QProcess::nullDevice());
    const auto end = [opener, failed = std::move(failed)](bool opened) {
        opener->deleteLater();
        if (!opened) {
            failed();
        }
    };
    QObject::connect(opener, &QProcess::finished, opener, [end](int code, QProcess::ExitStatus status) {
        end(status == QProcess::NormalExit && code == 0);
    });
    QObject::connect(opener, &QProcess::errorOccurred, opener, [end](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) { // then it does not finish
            end(false);
        }
    });
    opener->start(QStringLiteral("xdg-open"), {QString::fromLatin1(urlOfPath(file.parent_path()))});
}

void askPortal(const std::filesystem::path& file, std::function<void()> failed) {
    const std::optional<RegularFile> open = RegularFile::open(file);
    if (!open) {
        openFolderOf(file, std::move(failed));
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.OpenURI"), QStringLiteral("OpenDirectory"));
    call << QString() << QVariant::fromValue(QDBusUnixFileDescriptor(open->descriptor())) << QVariantMap();
    ask(call, [file, failed = std::move(failed)] { openFolderOf(file, failed); });
}

} // namespace

void revealFile(const std::filesystem::path& file, std::function<void()> failed,
                const QByteArray& activationToken) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList(QString::fromLatin1(urlOfPath(file))) << QString::fromUtf8(activationToken);
    ask(call, [file, failed = std::move(failed)] { askPortal(file, failed); });
}

} // namespace velmora
