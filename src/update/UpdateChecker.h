#pragma once

// Tells the user when a newer version has been published: quietly, at most once a day, or because the user
// asked. Everything here runs on the main thread and returns at once; answers come through the event loop.

#include "update/Manifest.h"

#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

class QNetworkAccessManager;
class QSettings;

namespace velmora::UpdateChecker {

/// What the user is told. With `download` there are two buttons, "Download" (the default) and "Later";
/// without, "OK".
struct Alert {
    QString title;
    QString body;
    std::optional<QUrl> download;

    bool operator==(const Alert&) const = default;
};

/// Whether the program looks for a newer version by itself; some who pass it on leave that out.
enum class QuietCheck : bool { leftOut, present };

/// What the checker needs of the program around it. All of it outlives the checks that are started with it.
struct Program {
    QNetworkAccessManager& network;
    QSettings& preferences;
    QUrl manifestURL;
    QString currentVersion;
    std::function<double()> now; ///< seconds since 1970 (UTC)
    std::function<void(const Alert& alert)> show;
    QuietCheck quietCheck;
};

/// Where the maker publishes the manifest, as the build was told.
QUrl manifestURL();

/// As the build was told.
QuietCheck builtQuietCheck();

/// This build's version; "0" when the build has none.
QString currentVersion();

/// The preference that holds the time of the last successful quiet check, in seconds since 1970.
inline constexpr const char* lastCheckPreference = "updateLastCheck";

/// The preference that holds whether the user wants quiet checks: a truth value, true when absent.
inline constexpr const char* quietCheckPreference = "updateQuietCheck";

bool wantsQuietCheck(const QSettings& preferences);

/// Fetches the manifest at `url` and gives `answer` the release, or nothing: when the transfer fails or takes
/// longer than 15 seconds, when the body is larger than 1 MiB or no manifest, when the URL is neither https
/// nor on this machine. The HTTP status does not matter. Not called when `network` is destroyed first.
void latest(QNetworkAccessManager& network, const QUrl& url,
            std::function<void(std::optional<Release>)> answer);

/// Offers a newer release if the last successful quiet check is more than 24 hours ago; silent otherwise. A
/// check that fails is tried again next time. Asks nobody where the quiet check is left out or not wanted.
void checkQuietly(const Program& program);

/// Offers a newer release, or says that there is none, or that it could not be found out.
void checkInteractively(const Program& program);

} // namespace velmora::UpdateChecker
