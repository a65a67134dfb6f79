#pragma once

// How much each folder of a scan plays, with everything below it.
//
//   1228.029	5	/music                      seconds, tab, measured files, tab, the folder
//   468.000	2	/music/Anna Björk - Live
//   508.029	3	/music/set.zip              an archive is a folder

#include "cli/Sink.h"
#include "scan/ScanDetails.h"

namespace velmora {

/// A line for each of `folderTotals` to `depth` folders below the nearest source. Lengths are divided by
/// `speed`, which is positive; paths are written as `filesReport` writes them.
void foldersReport(const Sink& out, const ScanDetails& details, const PathList& dropped, int depth,
                   double speed);

} // namespace velmora
