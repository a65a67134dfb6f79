#pragma once

// The playing time of Sun, NeXT and DEC audio (.au, .snd): a header of six numbers, big-endian after ".snd",
// little-endian where the magic stands backwards.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the file at `start`; a size that is unknown or too large is what the file holds. Absent for an
/// encoding whose length the bytes do not tell.
std::optional<Timing> auDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
