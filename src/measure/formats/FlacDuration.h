#pragma once

// The playing time of FLAC: what lies between its first frame and its last, which both carry the number of
// their first sample. The samples that its header states may be those of a file that it was cut out of.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the FLAC stream at `start`. Of a file that was cut off only the whole frames count. Zero if neither
/// a statement nor a frame is found; absent without STREAMINFO.
std::optional<Timing> flacDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
