#pragma once

// Puts gathered files into the order in which they are measured, listed and packed: what was dropped comes
// before what came out of archives, and within each group paths stand as a file manager shows names.

#include "records/FilePath.h"
#include "system/Paths.h"

namespace velmora::Collector {

/// Sorts `files` in place; `temps` are the extraction directories of the same gathering. Natural order of the
/// user's locale: case ignored, runs of digits by their value, ties by bytes. Equal paths keep their order.
/// Takes the least time and memory where files that share a folder come one after the other.
void sortScanOrder(FilePaths& files, const Paths& temps);

} // namespace velmora::Collector
