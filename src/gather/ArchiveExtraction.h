#pragma once

// Unpacks one archive with the system's own tools into a new private directory. The tools work on a copy,
// never on the user's file, and the copy is gone when the extraction ends.

#include "records/Reasons.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>

namespace velmora::Collector {

/// What became of one archive: there is either a directory or a reason.
struct Extracted {
    std::optional<std::filesystem::path> directory = {}; ///< with its content
    std::optional<Reason> why = {};                      ///< why it was not unpacked

    bool operator==(const Extracted&) const = default;
};

/// Unpacks the file `archive` into a directory (mode 0700, in the temporary directory, "velmora-" and a
/// UUID), which is from here on the caller's to remove. Its owner can read all of it. There is none when no
/// tool could unpack the archive, when it is no regular file or empty, or when `stop` was requested: nothing
/// is left then. Blocks until the tools have ended; `meanwhile` is called as long as one runs, every few
/// milliseconds.
Extracted extract(const std::filesystem::path& archive, const std::stop_token& stop = {},
                  const std::function<void()>& meanwhile = {});

} // namespace velmora::Collector
