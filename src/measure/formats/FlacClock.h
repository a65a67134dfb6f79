#pragma once

// The clock of a FLAC stream that does not run through: files that were joined, whose frames begin at number
// 0 again, and sample rates that change. The frames tell it at some places, and where two of them do not
// agree, the place between where the clock jumps is sought.

#include "measure/bytes/GuardedReader.h"
#include "measure/formats/FlacFrame.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Where frames of a stream stand in a file.
struct FlacExtent {
    std::int64_t firstAt = 0; ///< no frame begins before this
    std::int64_t lastAt = 0;  ///< the header of the last frame
    bool hasWholeEnd = false; ///< all of the last frame is there
};

/// How many seconds the frames in `extent` play. Reads less than the whole file: a part of less than a 30th
/// of it may go unseen, and so does one of a single frame. Absent if the clock cannot be read there.
std::optional<double> flacClockSeconds(GuardedReader& reader, const FlacStreamInfo& stream,
                                       const FlacExtent& extent);

} // namespace velmora
