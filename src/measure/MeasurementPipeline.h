#pragma once

// The one entry to measuring: a path goes in, a `Measured` comes out, whatever the file holds. Three ways are
// tried in order: the program's own header readers, our own readers and libavformat in process, the ffprobe
// program.

#include "measure/MediaAnswer.h"
#include "records/Records.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stop_token>

namespace velmora::Collector {

/// Times `file`. `seconds` is positive and finite, or -1.0 when no way could time it or it is not
/// a regular file, and `why` then says why; `bytes` is its size, 0 when that cannot be read. Never throws.
/// Blocks the calling thread; any thread, many at once. Ends early, with -1.0, when `stop` is requested.
Measured measure(const FilePath& file, const std::stop_token& stop = {});

/// A measurement and the way it went.
struct Explanation {
    Measured measured;

    /// What was learnt in process; absent if the file could not be opened or the measurement was stopped
    /// before.
    std::optional<MediaAnswer> answer = {};

    bool wasFfprobeAsked = false; ///< then `measured.seconds` is what it said
    bool hasReadFailed = false;   ///< the disk failed: what was learnt in process is not believed
    std::int64_t bytesRead = 0;   ///< of the file, in process
    std::int64_t budgetLeft = 0;  ///< see MediaFinding; 0 where content was not searched
};

/// Measures as `measure` does, and says how.
Explanation explain(const FilePath& file, const std::stop_token& stop = {});

} // namespace velmora::Collector
