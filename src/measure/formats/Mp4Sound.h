#pragma once

// What an audio track of an MP4 file says of its sound: the sampling rate and the channels of its first
// sample description.

#include "measure/bytes/Timing.h"
#include "measure/formats/Mp4Boxes.h"

namespace velmora {

/// By `sampleTable`, a "stbl". For AAC by what its decoder is told: the description itself may hold fixed
/// numbers. Not known where it is of a kind that is seldom met, or damaged.
Sampling mp4Sampling(GuardedReader& reader, const Mp4Box& sampleTable);

} // namespace velmora
