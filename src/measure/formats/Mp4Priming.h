#pragma once

// The samples that an AAC encoder adds before and after the sound, as iTunes and many others note them in a
// comment called "iTunSMPB". Edit lists say the same; files with the comment often have none.

#include "measure/formats/Mp4Boxes.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// In samples of the sound that is played.
struct Mp4Priming {
    std::int64_t before = 0;
    std::int64_t sound = 0; ///< positive
    std::int64_t after = 0;
};

/// What the comment in `movie`, a "moov", says; absent if there is none, or none that can be read.
std::optional<Mp4Priming> readMp4Priming(GuardedReader& reader, const Mp4Box& movie);

/// The sound alone of a track whose samples last `duration` units of its time scale. All of them where the
/// note does not fit them.
double soundOf(const Mp4Priming& priming, std::int64_t duration);

} // namespace velmora
