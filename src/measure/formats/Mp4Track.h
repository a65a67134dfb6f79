#pragma once

// One track of an MP4 file, as far as its length goes (ISO/IEC 14496-12 section 8): how long its media are,
// which part of them its edits play, and where its samples stand, to tell how many are left of a file that
// was cut off.

#include "measure/bytes/Timing.h"
#include "measure/formats/Mp4Boxes.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace velmora {

/// One line of "elst".
struct Mp4Edit {
    std::int64_t length = 0;    ///< in the movie's time scale; 0 is all the rest
    std::int64_t mediaTime = 0; ///< where it begins, in the track's time scale; -1 is a pause
};

struct Mp4Track {
    std::uint32_t id = 0;
    bool isAudio = false;
    std::int64_t timeScale = 0;     ///< units a second
    std::int64_t mediaDuration = 0; ///< in those, as the header states; 0 if it does not
    std::vector<Mp4Edit> edits;
    std::optional<Mp4Box> sampleTable; ///< "stbl"
    Sampling sampling;                 ///< by its description there
};

/// Reads `box`, a "trak".
Mp4Track readMp4Track(GuardedReader& reader, const Mp4Box& box);

/// How long all samples of `track` last by its tables, in its time scale; 0 where they hold none.
std::int64_t sampleTableDuration(GuardedReader& reader, const Mp4Track& track);

/// Whether all chunks of `track` begin before `end`, by the last of its table; true where it has none.
bool beginsBefore(GuardedReader& reader, const Mp4Track& track, std::int64_t end);

/// Whether the samples of the last chunk end before `end`, too. Reads further tables; true without them.
bool endsBefore(GuardedReader& reader, const Mp4Track& track, std::int64_t end);

/// How long the samples of `track` that stand before `end` last, in its time scale, as its tables tell.
std::int64_t mediaDurationBefore(GuardedReader& reader, const Mp4Track& track, std::int64_t end);

/// Seconds that the edits play of `mediaDuration`; all of it without edits.
double editedSeconds(const Mp4Track& track, std::int64_t mediaDuration, std::int64_t movieScale);

} // namespace velmora
