#pragma once

// The playing time of WAV (RIFF, the big-endian RIFX) and of its relatives for more than 4 GB: RF64 and BW64
// (EBU Tech 3306, ITU-R BS.2088), and Wave64. What a header states about the size of the data is believed
// only as far as the file reaches; recorders and pipes leave it empty, full, or wrapped around at 4 GB.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the RIFF, RIFX, RF64 or BW64 file at `start`. Absent if it has no data, or data whose length its
/// bytes do not tell.
std::optional<Timing> wavDuration(GuardedReader& reader, std::int64_t start);

/// The same for Wave64, whose chunks have names of 16 bytes and sizes of 8.
std::optional<Timing> wave64Duration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
