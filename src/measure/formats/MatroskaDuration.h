#pragma once

// The playing time of Matroska and WebM (RFC 9559): what the head states where there is nothing but audio;
// libavformat for the rest. Whether the statement can be true is seen from the size of the one element that
// holds everything.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the sound of the file at `start` by what the file states, or by its packets if it was cut off or
/// states nothing of the sound.
std::optional<Timing> matroskaDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
