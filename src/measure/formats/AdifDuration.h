#pragma once

// AAC after one header (ISO/IEC 13818-7 section 6.1, "ADIF"): what encoders wrote before ADTS and MP4.
// Nothing in it says how long it plays or where a block ends, so libavcodec decodes it.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Keeps the contract of `FormatReader`. Absent for files of more than 16 MiB.
std::optional<Timing> adifDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
