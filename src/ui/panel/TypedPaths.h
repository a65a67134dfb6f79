#pragma once

// Paths as people type them: relative to the folder that is shown, from "/" or from "~" on.

#include "system/Paths.h"

#include <QString>

#include <filesystem>

namespace velmora {

/// The path that `text` means while `folder` is shown. Where `text` begins with that folder as it is shown,
/// the folder's own bytes are taken, also where they are no text.
std::filesystem::path typedPath(const QString& text, const std::filesystem::path& folder);

/// As `typedPath`; of several names, each in quotation marks, all paths: "a.ogg" "b.ogg".
Paths typedPaths(const QString& text, const std::filesystem::path& folder);

/// How `path` is shown where it can be edited.
QString shownPath(const std::filesystem::path& path);

} // namespace velmora
