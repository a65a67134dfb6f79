#pragma once

// The playing time of a media file, learnt in process: by a reader of our own for most formats, by
// libavformat through a guarded reader for the rest. The format is told from the first bytes, never from the
// name.

#include "measure/MediaAnswer.h"
#include "measure/bytes/ByteSource.h"

#include <cstdint>
#include <filesystem>
#include <stop_token>

namespace velmora {

struct MediaFinding {
    MediaAnswer answer;
    std::int64_t budgetLeft; ///< bytes that might still have been read in search of audio, at least 0
};

/// Times `source`, the bytes of the file at `name`. Any thread, many at once; ends early, without an answer,
/// when `stop` is requested. No file is opened, except, for a name in .sd2, the description that stands
/// beside it as "._name"; otherwise the name is only a hint to what is not audio.
MediaFinding mediaDuration(const ByteSource& source, const std::filesystem::path& name,
                           const std::stop_token& stop);

} // namespace velmora
