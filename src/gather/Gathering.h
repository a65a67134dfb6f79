#pragma once

// The first stage of a scan: from dropped items to audio files in scan order.

#include "gather/SourceWalker.h"
#include "records/Records.h"
#include "system/Paths.h"

#include <filesystem>
#include <stop_token>
#include <vector>

namespace velmora::Collector {

/// Walks `paths` in their order, and sorts what was found. Long-running; called
/// on a thread of its own. When `stop` is requested it ends early with what it has; the extraction
/// directories in the result are the caller's in any case. `unpacking` is told which archive is being
/// unpacked.
GatherResult gather(const PathList& paths, const std::stop_token& stop = {}, const Unpacking& unpacking = {});

} // namespace velmora::Collector
