#pragma once

// The playing time of a media file, learnt in process: by a reader of our own for most formats, by
// libavformat behind a guarded reader for the rest. The format is told from the first bytes, never from the
// name.

#include "measure/bytes/ByteSource.h"
#include "system/RegularFile.h"

#include <filesystem>
#include <optional>
#include <stop_token>

namespace velmora {

struct MediaAnswer {
    std::optional<double> seconds;

    /// The content plays nothing, or is not audio but something a general media tool would still open
    /// (playlist, script, picture, subtitle, video alone), or could not be searched within bounds: no further
    /// tool is asked.
    bool isForeign = false;
};

/// Times `file`, which stands at `name`. Any thread, many at once; ends early, without seconds, when `stop`
/// is requested. Seconds are positive and finite. No file but `file` is opened, except, for a name in .sd2,
/// the description that stands beside it as "._name".
MediaAnswer mediaDuration(const RegularFile& file, const std::filesystem::path& name,
                          const std::stop_token& stop);

/// The same for bytes from anywhere; `name` is only a hint to what is not audio.
MediaAnswer mediaDuration(const ByteSource& source, const std::filesystem::path& name,
                          const std::stop_token& stop);

} // namespace velmora
