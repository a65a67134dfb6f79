#pragma once

// Puts gathered files into the order in which they are measured, listed and packed: what was dropped comes
// before what came out of archives, and within each group paths stand as a file manager shows names.

#include "system/Paths.h"

#include <filesystem>
#include <vector>

namespace velmora::Collector {

/// Sorts `files` in place; `temps` are the extraction directories of the same gathering. Natural order of the
/// user's locale: case ignored, runs of digits by their value, ties by bytes. Equal paths keep their order.
void sortScanOrder(Paths& files, const Paths& temps);

} // namespace velmora::Collector
