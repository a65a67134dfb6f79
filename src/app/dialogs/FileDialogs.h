#pragma once

// The open and the save dialog, in the colours of the window.

#include "app/desktop/FileUrls.h"

#include <QString>

#include <filesystem>
#include <optional>

class QWindow;

namespace velmora {

/// Asks for folders and files to measure, any number of both. Empty when it was cancelled. Blocks until it is
/// closed; names that are not UTF-8 cannot be chosen here, only the folders they lie in.
Paths chooseSources(QWindow* window);

/// Where to save a zip archive, and under which name.
struct ZipProposal {
    std::string name;
    std::optional<std::filesystem::path> folder;
    int fileCount = 0;
};

/// Asks where to save the archive, and before replacing one. Absent when it was cancelled. Blocks until it is
/// closed.
std::optional<std::filesystem::path> chooseZip(QWindow* window, const ZipProposal& proposal);

} // namespace velmora
