#pragma once

// The checks of single formats. Each takes note of what is wrong with the content that begins at `start` of
// the file, after any ID3v2 tag, and returns up to where it has read all bytes.

#include "measure/check/Examination.h"
#include "measure/formats/FormatTable.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace velmora {

using FormatCheck = std::int64_t (*)(Examination& file, std::int64_t start);

/// Frames by their numbers and checksums.
std::int64_t checkFlac(Examination& file, std::int64_t start);

/// Pages by their numbers, clocks and checksums.
std::int64_t checkOgg(Examination& file, std::int64_t start);

/// Bare frames of MPEG audio or ADTS by what stands between them, checksums, and the lengths that the first
/// frame and the tag state. Returns what they are called in the table of extensions (ForeignFormat.h); absent
/// if there are none. Reads all bytes but the tags.
std::optional<std::string_view> checkFrames(Examination& file, std::int64_t start);

/// Any other format by what its reader says of the statement in its header.
std::int64_t checkStatement(Examination& file, std::int64_t start, FormatReader reader);

} // namespace velmora
