#pragma once

// Whether a file's content belongs to its extension. Some extensions share a container, some containers have
// several extensions.

#include <filesystem>
#include <string_view>

namespace velmora {

/// What bare frames are called here; all other formats are called as in formats/FormatTable.
inline constexpr std::string_view mpegFrames = "MPEG audio";
inline constexpr std::string_view adtsFrames = "ADTS";

/// True if a file called `name` is expected to hold something else than `format`. False for an extension that
/// is not in the table.
bool isForeign(const std::filesystem::path& name, std::string_view format);

} // namespace velmora
