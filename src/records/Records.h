#pragma once

// The plain values that carry a scan's results from gathering and measuring to whoever shows them.
// A path is bytes, absolute, as it was found. Durations are seconds, sizes are bytes.

#include "records/FilePath.h"
#include "records/FormatName.h"
#include "records/PathList.h"
#include "records/Reasons.h"
#include "system/Paths.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// What `Measured::seconds` holds for a file that could not be measured. Any negative value means the same.
inline constexpr double unmeasured = -1.0;

/// One audio file after measurement.
struct Measured {
    /// The file as it was found: in a dropped folder or in an extraction directory.
    FilePath url;
    double seconds = unmeasured;
    std::int64_t bytes = 0;         ///< 0 when the size could not be read
    std::optional<Reason> why = {}; ///< why it could not be measured; absent when it was

    // As far as it was met on the way to the length; nothing is read for it. 0 and "": not known.
    std::uint16_t channels = 0;
    std::uint32_t sampleRate = 0; ///< in Hz
    FormatName format = {};

    bool operator==(const Measured&) const = default;
};

/// The tally of one audio format within one summary.
struct FormatStat {
    /// The extension in upper case, "MP3"; "" for files without one. Unique within a summary.
    std::string ext;
    int count = 0;
    double seconds = 0;

    bool operator==(const FormatStat&) const = default;
};

/// An archive whose content is not part of the scan.
struct SkippedArchive {
    std::filesystem::path path;
    Reason why;

    bool operator==(const SkippedArchive&) const = default;
};

/// A folder that could not be opened or not listed to its end, or an item that could not even be looked at.
struct UnreadableFolder {
    std::filesystem::path path;
    int error; ///< the errno that says why

    bool operator==(const UnreadableFolder&) const = default;
};

/// What gathering found.
struct GatherResult {
    FilePaths files;                             ///< every audio file, in scan order once sorted
    Paths temps;                                 ///< extraction directories, in the order they were made
    Paths archives;                              ///< archives[i] is what was unpacked into temps[i]
    std::vector<SkippedArchive> skippedArchives; ///< as they were met
    std::vector<UnreadableFolder> unreadableFolders = {}; ///< likewise

    bool operator==(const GatherResult&) const = default;
};

/// The outcome of a scan. Default-constructed it is the empty summary. After a completed scan `fileCount`
/// equals the length of `files` and the sum of `count` over `formats`.
struct ScanSummary {
    double seconds = 0;              ///< total playing time of all measured files
    int fileCount = 0;               ///< measured files
    std::int64_t bytes = 0;          ///< their sizes added up
    std::vector<FormatStat> formats; ///< by `seconds`, largest first; equal ones by `ext`
    std::string longestName;         ///< the longest file's name; "" when none plays longer than 0 seconds
    double longestSeconds = 0;
    int unreadable = 0; ///< files that could not be measured and archives that could not be unpacked
    std::string source; ///< what was dropped, in upper case: the one item's name, or "3 ITEMS"
    PathList files;     ///< the measured files, in scan order
    PathList dropped;   ///< as the user dropped them
    PathList roots;     ///< `dropped`, then the extraction directories

    bool operator==(const ScanSummary&) const = default;
};

} // namespace velmora
