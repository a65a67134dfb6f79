#pragma once

// The playing time of Musepack, stream versions 7 and 8 (trac.musepack.net, "SV7 specification", "SV8
// specification").

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the Musepack file at `start` by what its header states; of a file of version 8 without its end,
/// which may have been cut off, by the frames that are whole. Absent for other stream versions.
std::optional<Timing> musepackDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
