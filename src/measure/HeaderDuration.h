#pragma once

// Times the files whose own headers tell it exactly: Ogg and ASF. Which extension belongs to which reader
// stands in formats/FormatTable.h; here the readers meet files. Each reads a small, bounded part of the file,
// whatever its size. Any thread, many at once.

#include "measure/MediaAnswer.h"
#include "measure/bytes/ByteSource.h"

#include <filesystem>
#include <optional>

namespace velmora::HeaderDuration {

/// What the header of `source` says, by the reader for the extension of `path`: "ogg", "oga", "opus", "ogx",
/// "spx" are Ogg; "wma", "asf", "wmv" are ASF; in upper or lower case. Its seconds are positive; absent for
/// every other extension and for what the reader does not understand.
std::optional<Timed> timed(const std::filesystem::path& path, const ByteSource& source);

/// Its seconds, of the file at `path`; absent too when that cannot be opened or is not a regular file.
std::optional<double> seconds(const std::filesystem::path& path);

/// The same whatever the extension.
std::optional<double> ogg(const std::filesystem::path& path);
std::optional<double> asf(const std::filesystem::path& path);

} // namespace velmora::HeaderDuration
