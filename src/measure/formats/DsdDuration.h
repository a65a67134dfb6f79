#pragma once

// The playing time of one-bit audio: DSF (Sony, "DSF File Format Specification" 1.01) and DSDIFF (.dff,
// Philips, "DSDIFF File Format Specification" 1.5).

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the DSF file at `start`; what it states is clamped to the data there are.
std::optional<Timing> dsfDuration(GuardedReader& reader, std::int64_t start);

/// Times the DSDIFF file at `start`, plain or compressed (DST).
std::optional<Timing> dsdiffDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
