#pragma once

// The length that an ID3v2 tag states (id3.org, ID3v2.4 section 4.2.3): the text frame "TLEN", in the oldest
// version "TLE", in milliseconds. Writers round it to a second.

#include "measure/bytes/GuardedReader.h"

#include <optional>

namespace velmora {

/// In seconds, by the tag that the file begins with; absent if there is none or it states none.
std::optional<double> lengthInTag(GuardedReader& reader);

} // namespace velmora
