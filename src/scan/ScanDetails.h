#pragma once

// What the last scan found, file by file, and where the user knows each file to be.

#include "records/Records.h"

#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

namespace velmora {

/// What is known of the last scan's files beyond the summary. Complete once the scan has ended; empty before.
struct ScanDetails {
    std::vector<Measured> files = {}; ///< every file found, in scan order, unmeasured ones included
    std::vector<SkippedArchive> skippedArchives = {};
    std::vector<UnreadableFolder> unreadableFolders = {}; ///< what they hold is missing
    std::unordered_map<std::string, std::filesystem::path> archiveOf =
        {}; ///< extraction directory to its archive

    /// `path` as the user knows it: what lies in an extraction directory is shown below its archive's own
    /// path, nested archives likewise ("/music/set.zip/Disc 1/01.wav").
    std::filesystem::path shownPath(const std::filesystem::path& path) const;

    /// The same as bytes.
    std::string shownName(const std::string& path) const;

    /// Where the user finds `path`: itself, or the archive of the user's in which it lies, however deep.
    std::filesystem::path placeOf(const std::filesystem::path& path) const;
};

} // namespace velmora
