#pragma once

// The playing time of Monkey's Audio (.ape), whose header counts blocks (samples of one channel) in frames.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the file at `start`. Of a file that was cut off only the frames that are there count.
std::optional<Timing> apeDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
