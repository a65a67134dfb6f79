#pragma once

// The playing time of a file as libavformat knows it, in process and behind a guarded reader.

#include "system/RegularFile.h"

#include <filesystem>
#include <optional>
#include <stop_token>

namespace velmora {

struct MediaAnswer {
    std::optional<double> seconds;

    /// The content plays nothing, or is not audio but something a general media tool would still open
    /// (playlist, script, picture, subtitle, video alone): no further tool is asked.
    bool isForeign = false;
};

/// Times `file`, which stands at `name`. Any thread, many at once; ends early, without seconds, when `stop`
/// is requested.
MediaAnswer mediaDuration(const RegularFile& file, const std::filesystem::path& name,
                          const std::stop_token& stop);

} // namespace velmora
