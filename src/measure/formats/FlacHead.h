#pragma once

// What a FLAC file tells before its second frame: its metadata block STREAMINFO and the number of its first
// sample.

#include "measure/bytes/GuardedReader.h"
#include "measure/formats/FlacFrame.h"

#include <cstdint>
#include <optional>

namespace velmora {

struct FlacHead {
    FlacStreamInfo stream;
    std::int64_t audioAt = 0;     ///< no frame begins before this
    std::int64_t firstSample = 0; ///< of the first frame; 0 if none was found where it has to be
};

/// Reads it of the stream at `start`. Rate and block size are as the first frame states them, else as
/// STREAMINFO does. Absent if neither tells the rate.
std::optional<FlacHead> readFlacHead(GuardedReader& reader, std::int64_t start);

/// The same of frames that begin at `start` without a file header; absent if none does.
std::optional<FlacHead> readBareFlacHead(GuardedReader& reader, std::int64_t start);

} // namespace velmora
