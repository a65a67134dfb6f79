#pragma once

// The playing time of AMR files (.amr, RFC 4867 section 5): a magic line, then frames of 20 ms, each of a
// size that its first byte tells. Silence and missing frames are short frames, so no bit rate helps; they are
// counted.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the narrow-band or wide-band AMR file at `start`. Zero without a whole frame; absent if it is
/// neither.
std::optional<Timing> amrDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
