#pragma once

// Twelve seconds of sound in any format.

#include "tests/support/RealAudio.h"

#include <string>
#include <string_view>

namespace velmora::test {

inline constexpr AudioShape twelveSeconds{.frames = 529'977};

/// The bytes that `command` makes of it; see encodeAudio.
std::string encoded(std::string_view extension, std::string_view command);

/// The bytes that the usual encoder makes of it.
std::string encoded(std::string_view extension);

/// What a general decoder makes of `bytes`, in seconds: 44.1 kHz, 16 bits, stereo.
double decodedSeconds(const std::string& bytes);

} // namespace velmora::test
