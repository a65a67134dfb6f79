#pragma once

// How much each folder of a scan plays, with everything below it. An archive is a folder.

#include "records/PathList.h"
#include "scan/ScanDetails.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

struct FolderTotal {
    std::string path;   ///< as the user knows it, without a final "/" but for the root; bytes
    int depth = 0;      ///< how many folders below the nearest source; 0: a source itself
    double seconds = 0; ///< of all measured files in it and below it
    std::int64_t files = 0;

    bool operator==(const FolderTotal&) const = default;
};

/// The folders in which audio was found: the sources of the scan, `dropped`, and what is below them. A file
/// that was dropped stands for its folder. A folder comes before those in it, and these in the order of their
/// first file in the scan.
std::vector<FolderTotal> folderTotals(const ScanDetails& details, const PathList& dropped);

} // namespace velmora
