#pragma once

// Flash video, for its sound. libavformat times it; files that were joined are timed one by one.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Keeps the contract of `FormatReader`.
std::optional<Timing> flashDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
