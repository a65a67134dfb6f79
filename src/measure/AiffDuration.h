#pragma once

// The playing time of AIFF and AIFF-C (Apple, "Audio Interchange File Format", 1989, and its AIFF-C draft of
// 1991).

#include "measure/GuardedReader.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the AIFF or AIFF-C file at `start`. The frames it states are clamped to the sound data there is.
/// Absent without a "COMM" chunk or for a compression whose length the bytes do not tell.
std::optional<double> aiffDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
