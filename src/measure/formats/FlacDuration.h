#pragma once

// The playing time of FLAC: what lies between its first frame and its last, which both carry the number of
// their first sample. The samples that its header states may be those of a file that it was cut out of.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the FLAC stream at `start`. Of a file that was cut off only the whole frames count; files that were
/// joined and rates that change add up (FlacClock.h). Zero if neither a statement nor a frame is found;
/// absent if neither STREAMINFO nor the first frame tells the sample rate.
std::optional<Timing> flacDuration(GuardedReader& reader, std::int64_t start);

/// Times the frames of FLAC that begin at `start` without a file header, as a cut stream has them. Absent if
/// none does, or if it does not tell its sample rate. Their sync word is that of ADTS, too, which is to be
/// asked before.
std::optional<Timing> bareFlacDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
