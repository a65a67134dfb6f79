#pragma once

// Fragmented MP4 (ISO/IEC 14496-12 section 8.8): the movie itself is empty, and samples come in pieces, each
// a "moof" that describes the "mdat" after it.

#include "measure/formats/Mp4Boxes.h"

#include <cstdint>

namespace velmora {

/// The samples of the track `trackId` in all fragments between `at` and the end of the file, in the track's
/// time scale. `movie` is the "moov", which holds the defaults. Of a fragment whose data were cut off, the
/// part that is there counts.
std::int64_t fragmentsDuration(GuardedReader& reader, const Mp4Box& movie, std::uint32_t trackId,
                               std::int64_t at);

} // namespace velmora
