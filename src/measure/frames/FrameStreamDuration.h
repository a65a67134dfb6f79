#pragma once

// The playing time of a bare stream of frames: MPEG audio (.mp3, .mp2) and ADTS (.aac), wherever it is
// stored. What the first frame states is believed only when it fits the size of the file; otherwise frames
// are counted.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the frames between `start` and `end`, the first of which stands at `start`. Absent if none does.
std::optional<Timing> frameStreamDuration(GuardedReader& reader, std::int64_t start, std::int64_t end);

/// The same when the first frame may stand anywhere after `start`. From there on half of the bytes must be
/// frames, tags left out, or a hundred frames must stand in a row.
std::optional<Timing> searchedFrameDuration(GuardedReader& reader, std::int64_t start, std::int64_t end);

} // namespace velmora
