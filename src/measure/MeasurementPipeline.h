#pragma once

// The one entry to measuring: a path goes in, a `Measured` comes out, whatever the file holds. Three ways are
// tried in order: the program's own header readers, libavformat in process, the ffprobe program.

#include "records/Records.h"

#include <filesystem>
#include <stop_token>

namespace velmora::Collector {

/// Times the file at `url`. `seconds` is positive and finite, or -1.0 when no way could time it or it is not
/// a regular file; `bytes` is its size, 0 when that cannot be read. Never throws. Blocks the calling thread;
/// any thread, many at once. Ends early, with -1.0, when `stop` is requested.
Measured measure(const std::filesystem::path& url, const std::stop_token& stop = {});

} // namespace velmora::Collector
