#pragma once

// The checks of single formats. Each takes note of what is wrong with the content that begins at `start` of
// the file, after any ID3v2 tag, and returns up to where it has read all bytes.

#include "measure/check/Examination.h"
#include "measure/formats/FormatTable.h"

#include <cstdint>

namespace velmora {

using FormatCheck = std::int64_t (*)(Examination& file, std::int64_t start);

/// Frames by their numbers and checksums.
std::int64_t checkFlac(Examination& file, std::int64_t start);

/// Any other format by what its reader says of the statement in its header.
std::int64_t checkStatement(Examination& file, std::int64_t start, FormatReader reader);

} // namespace velmora
