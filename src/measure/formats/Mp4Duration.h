#pragma once

// The playing time of MP4 and its relatives (.m4a, .m4b, .3ga, .aax, QuickTime): the audio track's media as
// its edits play them.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Times the longest audio track of the file at `start`. Of a file that was cut off only the samples that are
/// there count. Zero without an audio track; absent if the movie is missing or in a form only libavformat
/// reads.
std::optional<Timing> mp4Duration(GuardedReader& reader, std::int64_t start);

} // namespace velmora
