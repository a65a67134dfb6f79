#pragma once

// The playing time of Audible's books (.aa), whose sound has a constant bit rate.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the file at `start` by the bytes of its chapters that are there. Absent for an unknown codec, or if
/// the file ends before it names one.
std::optional<Timing> audibleDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
