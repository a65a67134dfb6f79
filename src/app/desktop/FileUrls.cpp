#include "app/desktop/FileUrls.h"

#include <QString>
#include <QSysInfo>

#include <string>
#include <string_view>
#include <utility>

namespace velmora {

namespace {

/// What follows `prefix` in `url`; absent when `url` begins otherwise. Letters count whatever their case.
std::optional<QByteArrayView> after(QByteArrayView url, QByteArrayView prefix) {
    if (url.size() < prefix.size() || url.first(prefix.size()).compare(prefix, Qt::CaseInsensitive) != 0) {
        return std::nullopt;
    }
    return url.sliced(prefix.size());
}

bool isThisMachine(QByteArrayView host) {
    return host.isEmpty() || host.compare("localhost", Qt::CaseInsensitive) == 0 ||
           host.compare(QSysInfo::machineHostName().toUtf8(), Qt::CaseInsensitive) == 0;
}

/// The path part of a file URL, still encoded.
std::optional<QByteArrayView> encodedPath(QByteArrayView url) {
    const std::optional<QByteArrayView> rest = after(url, "file:");
    if (!rest || !rest->startsWith('/')) {
        return std::nullopt;
    }
    if (!rest->startsWith("//")) {
        return rest;
    }
    const QByteArrayView authority = rest->sliced(2);
    const qsizetype slash = authority.indexOf('/');
    if (slash < 0 || !isThisMachine(authority.first(slash))) {
        return std::nullopt;
    }
    return authority.sliced(slash);
}

/// Takes the lines up to the next file URL off `list`. Its path; absent when there is none left.
std::optional<std::filesystem::path> takePath(QByteArrayView& list) {
    std::optional<std::filesystem::path> path;
    while (!path && !list.isEmpty()) {
        const qsizetype lineFeed = list.indexOf('\n');
        path = pathOfUrl((lineFeed < 0 ? list : list.first(lineFeed)).trimmed());
        list = lineFeed < 0 ? QByteArrayView() : list.sliced(lineFeed + 1);
    }
    return path;
}

} // namespace

std::optional<std::filesystem::path> pathOfUrl(QByteArrayView url) {
    const std::optional<QByteArrayView> encoded = encodedPath(url);
    if (!encoded) {
        return std::nullopt;
    }
    const QByteArray path = QByteArray::fromPercentEncoding(encoded->toByteArray());
    if (path.contains('\0')) {
        return std::nullopt;
    }
    return std::filesystem::path(path.toStdString());
}

Paths pathsOfUriList(QByteArrayView list) {
    Paths paths;
    while (std::optional<std::filesystem::path> path = takePath(list)) {
        paths.push_back(std::move(*path));
    }
    return paths;
}

bool holdsFileUrl(QByteArrayView list) {
    return takePath(list).has_value();
}

QByteArray urlOfPath(const std::filesystem::path& path) {
    return "file://" + QByteArray::fromStdString(path.native()).toPercentEncoding("/");
}

} // namespace velmora
