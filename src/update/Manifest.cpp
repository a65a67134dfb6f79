#include "update/Manifest.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

namespace velmora::UpdateChecker {

namespace {

QString withoutBlanksAround(const QString& text) {
    const auto isBlank = [](QChar c) { return c == u' ' || c == u'\t'; };
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && isBlank(text[begin])) {
        ++begin;
    }
    while (end > begin && isBlank(text[end - 1])) {
        --end;
    }
    return text.mid(begin, end - begin);
}

} // namespace

std::optional<Release> parseManifest(const QByteArray& body) {
    const QJsonObject manifest = QJsonDocument::fromJson(body).object(); // empty for anything else
    const QJsonValue version = manifest["version"];
    const QJsonValue url = manifest["url"];
    if (!version.isString() || !url.isString()) {
        return std::nullopt;
    }
    Release release{withoutBlanksAround(version.toString()), QUrl(url.toString(), QUrl::StrictMode),
                    std::nullopt};
    if (release.url.isEmpty() || !release.url.isValid()) {
        return std::nullopt;
    }
    if (const QJsonValue notes = manifest["notes"]; notes.isString()) {
        release.notes = notes.toString();
    }
    return release;
}

} // namespace velmora::UpdateChecker
