#pragma once

// The playing time of AIFF and AIFF-C (Apple, "Audio Interchange File Format", 1989, and its AIFF-C draft of
// 1991).

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the AIFF or AIFF-C file at `start`. The frames it states are clamped to the sound data there is; for
/// a compression that is not known they are taken as they are, if all the sound is there. Absent without a
/// "COMM" chunk, or for such a compression when it is not.
std::optional<Timing> aiffDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
