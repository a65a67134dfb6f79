#pragma once

// The playing time of RealMedia (.rm, .ra): libavformat's packets. A stream that its writer never finished
// states an hour, so what is stated is never believed.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the file at `start`. Zero without sound; absent if libavformat cannot tell.
std::optional<Timing> realMediaDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
