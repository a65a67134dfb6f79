#pragma once

// Paths as desktops exchange them: file URLs, percent-encoded bytes (RFC 8089), a line each (text/uri-list,
// RFC 2483). Nothing here goes through text, so a name that is not UTF-8 arrives as it is.

#include "system/Paths.h"

#include <QByteArray>
#include <QByteArrayView>

#include <filesystem>
#include <optional>
#include <vector>

namespace velmora {

/// The path of a file URL: "file:///a%20b", "file://localhost/a%20b", "file:/a%20b". Absent for every other
/// URL, for one of another machine, and for a path that holds a NUL.
std::optional<std::filesystem::path> pathOfUrl(QByteArrayView url);

/// The paths of the file URLs in a text/uri-list, in order; comments and other URLs are left out.
Paths pathsOfUriList(QByteArrayView list);

/// Whether a text/uri-list holds a file URL at all; reads no further than the first.
bool holdsFileUrl(QByteArrayView list);

/// The file URL of `path`, which is absolute.
QByteArray urlOfPath(const std::filesystem::path& path);

} // namespace velmora
