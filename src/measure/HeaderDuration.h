#pragma once

// Times the files whose own headers tell it exactly: Ogg and ASF. The readers (OggDuration.h, AsfDuration.h)
// look at bytes; here they meet files. Each reads a small, bounded part of the file, whatever its size.

#include "system/RegularFile.h"

#include <filesystem>
#include <optional>

namespace velmora::HeaderDuration {

/// The seconds that the header of `file` states, by the reader for the extension of `path`: "ogg", "oga",
/// "opus", "ogx", "spx" are Ogg; "wma", "asf", "wmv" are ASF; in upper or lower case. Positive; absent for
/// every other extension and for what the reader does not understand. Any thread, many at once.
std::optional<double> seconds(const std::filesystem::path& path, const RegularFile& file);

/// As above for the file at `path`; absent too when it cannot be opened or is not a regular file.
std::optional<double> seconds(const std::filesystem::path& path);

/// The same whatever the extension.
std::optional<double> ogg(const RegularFile& file);
std::optional<double> ogg(const std::filesystem::path& path);
std::optional<double> asf(const RegularFile& file);
std::optional<double> asf(const std::filesystem::path& path);

} // namespace velmora::HeaderDuration
