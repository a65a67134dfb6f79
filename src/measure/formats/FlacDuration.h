#pragma once

// The playing time of FLAC: the samples its first block states, checked against the number of the last frame,
// which also stands in where nothing is stated.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the FLAC stream at `start`. Of a file that was cut off only the whole frames count. Zero if neither
/// a statement nor a frame is found.
std::optional<Timing> flacDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
