#pragma once

// The release manifest: a JSON object with "version", "url" and, if it likes, "notes". Other keys are
// ignored.

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <optional>

namespace velmora::UpdateChecker {

/// One published release.
struct Release {
    QString version;              ///< without blanks or tabs around it
    QUrl url;                     ///< the page or file to download
    std::optional<QString> notes; ///< absent when the manifest has none, or none that is a text

    bool operator==(const Release&) const = default;
};

/// Reads a manifest. Absent when it is not a JSON object, or "version" or "url" is missing, not a text, or
/// not a URL.
std::optional<Release> parseManifest(const QByteArray& body);

} // namespace velmora::UpdateChecker
