#pragma once

// The playing time of Creative Voice files (.voc): blocks of sound, each with a rate of its own, and of
// silence, which is stated as a length without data.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the file at `start`; repeated sections count once. Zero without sound or silence.
std::optional<Timing> vocDuration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
