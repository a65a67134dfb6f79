#pragma once

// The playing time of WavPack (wavpack.com, "WavPack 4 & 5 Binary File / Block Format"): blocks, each of
// which states the samples of the whole file, if its encoder knew them, and where its own stand.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the file at `start`. Of a file that was cut off only the whole blocks count. Absent for the rates
/// that a block's flags do not tell, and for one-bit audio.
std::optional<Timing> wavPackDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
