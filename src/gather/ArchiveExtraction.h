#pragma once

// Unpacks one archive with the system's own tools into a new private directory. The tools work on a copy,
// never on the user's file, and the copy is gone when the extraction ends.

#include <filesystem>
#include <optional>
#include <stop_token>

namespace velmora::Collector {

/// Unpacks the file `archive` and returns the directory that holds its content (mode 0700, in the temporary
/// directory, "velmora-" and a UUID), from here on the caller's to remove. Its owner can read all of it.
/// Absent when no tool could unpack it, when it is no regular file or empty, or when `stop` was requested:
/// nothing is left then. Blocks until the tools have ended.
std::optional<std::filesystem::path> extract(const std::filesystem::path& archive,
                                             const std::stop_token& stop = {});

} // namespace velmora::Collector
