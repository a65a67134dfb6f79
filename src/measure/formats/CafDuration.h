#pragma once

// The playing time of Apple's Core Audio Format (Apple, "Core Audio Format Specification 1.0").

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the CAF file at `start`: by its bytes if every packet has as many, else by its packet table, less
/// the samples to be left out at both ends; where that counts the last packet of FLAC or ALAC as full, by
/// that packet. Of a file that was cut off only the packets that are there count.
std::optional<Timing> cafDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
