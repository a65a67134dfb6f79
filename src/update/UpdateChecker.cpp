#include "update/UpdateChecker.h"

#include "update/Version.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSettings>
#include <QTimer>

#include <chrono>
#include <utility>

namespace velmora::UpdateChecker {

namespace {

using namespace std::chrono_literals;

constexpr auto timeOut = 15s;
constexpr qint64 maxBodySize = qint64{1} << 20; // bytes
constexpr double secondsPerDay = 86'400;

bool isAllowed(const QUrl& url) {
    const bool onThisMachine = url.host() == u"localhost" || QHostAddress(url.host()).isLoopback();
    return url.scheme() == u"https" || (url.scheme() == u"http" && onThisMachine);
}

/// Whether the server answered in full, whatever its status.
bool hasAnswer(const QNetworkReply& reply) {
    // The codes up to UnknownProxyError are those of the network and of the proxy.
    const bool transportFailed =
        reply.error() != QNetworkReply::NoError && reply.error() <= QNetworkReply::UnknownProxyError;
    return !transportFailed && reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
}

bool isNewerThan(const Release& release, const QString& version) {
    return isNewer(release.version.toStdString(), version.toStdString());
}

Alert offer(const Release& release, const QString& currentVersion) {
    QString body = "You have " + currentVersion + ". Version " + release.version + " is available.";
    if (release.notes && !release.notes->isEmpty()) {
        body += "\n\n" + *release.notes;
    }
    return {"Velmora " + release.version + " is available", body, release.url};
}

} // namespace

QUrl manifestURL() {
    return {QStringLiteral(VELMORA_MANIFEST_URL)};
}

QuietCheck builtQuietCheck() {
    return VELMORA_QUIET_UPDATE_CHECK ? QuietCheck::present : QuietCheck::leftOut;
}

bool wantsQuietCheck(const QSettings& preferences) {
    return preferences.value(quietCheckPreference, true).toBool();
}

QString currentVersion() {
    const QString version = QStringLiteral(VELMORA_VERSION);
    return version.isEmpty() ? QStringLiteral("0") : version;
}

void latest(QNetworkAccessManager& network, const QUrl& url,
            std::function<void(std::optional<Release>)> answer) {
    if (!isAllowed(url)) {
        QTimer::singleShot(0, &network, [answer = std::move(answer)] { answer(std::nullopt); });
        return;
    }
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::UserVerifiedRedirectPolicy);
    QNetworkReply* reply = network.get(request);
    QTimer::singleShot(timeOut, reply, &QNetworkReply::abort);
    QObject::connect(reply, &QNetworkReply::redirected, reply, [reply](const QUrl& target) {
        if (isAllowed(target)) {
            emit reply->redirectAllowed();
        } else {
            reply->abort();
        }
    });
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply, [reply](qint64 received, qint64) {
        if (received > maxBodySize) {
            reply->abort();
        }
    });
    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, answer = std::move(answer)] {
        reply->deleteLater();
        answer(hasAnswer(*reply) ? parseManifest(reply->readAll()) : std::nullopt);
    });
}

void checkQuietly(const Program& program) {
    if (program.quietCheck == QuietCheck::leftOut || !wantsQuietCheck(program.preferences)) {
        return;
    }
    const double last = program.preferences.value(lastCheckPreference, 0.0).toDouble();
    if (!(program.now() - last > secondsPerDay)) {
        return;
    }
    latest(program.network, program.manifestURL, [program](const std::optional<Release>& release) {
        if (!release) {
            return;
        }
        program.preferences.setValue(lastCheckPreference, program.now());
        if (isNewerThan(*release, program.currentVersion)) {
            program.show(offer(*release, program.currentVersion));
        }
    });
}

void checkInteractively(const Program& program) {
    latest(program.network, program.manifestURL, [program](const std::optional<Release>& release) {
        if (!release) {
            program.show({"Couldn't check for updates", "Check your internet connection and try again.", {}});
        } else if (isNewerThan(*release, program.currentVersion)) {
            program.show(offer(*release, program.currentVersion));
        } else {
            program.show(
                {"You're up to date", "Velmora " + program.currentVersion + " is the latest version.", {}});
        }
    });
}

} // namespace velmora::UpdateChecker
