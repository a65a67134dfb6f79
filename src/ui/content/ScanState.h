#pragma once

// What the window shows of a scan at one moment. A plain value, so that a window can show a running scan as
// well as prepared data.

#include "scan/ScanModel.h"
#include "scan/ZipState.h"

#include <cstdint>
#include <string>

namespace velmora {

struct ScanState {
    ScanModel::Phase phase = ScanModel::Phase::idle;
    std::string status = {};
    std::string unpacking = {}; ///< the name of the archive that is being unpacked
    int processed = 0;          ///< files measured so far
    int found = 0;              ///< audio files found
    double progress = 0;        ///< from 0 to 1
    std::string source = {};    ///< what was dropped, in upper case; bytes, usually UTF-8
    double seconds = 0;         ///< total playing time
    int fileCount = 0;          ///< measured files
    std::int64_t bytes = 0;
    int unreadable = 0;       ///< files and archives that could not be read
    std::string missing = {}; ///< of an empty scan: what could not be read first, and why; bytes
    ZipState zip = {};

    /// What `model` publishes at this moment.
    static ScanState of(const ScanModel& model);

    bool operator==(const ScanState&) const = default;
};

} // namespace velmora
