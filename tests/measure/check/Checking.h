#pragma once

// Files of real encoders, whole and damaged, and what a check finds in them.

#include "records/Finding.h"
#include "tests/support/RealAudio.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

inline constexpr AudioShape tenSeconds{.frames = 441'000};

/// The bytes that `command`, or the usual encoder for `extension`, makes of `shape`; see encodeAudio.
std::string made(std::string_view extension, std::string_view command, const AudioShape& shape = {});
std::string made(std::string_view extension, const AudioShape& shape = {});

/// What a check finds in a file of these bytes that is called `name`.
Findings findingsIn(std::string_view bytes, const std::string& name);

/// The kinds of it, in their order.
std::vector<FindingKind> kindsIn(std::string_view bytes, const std::string& name);

/// The finding of `kind` among them; a test failure and an empty one if there is none.
Finding findingOf(FindingKind kind, std::string_view bytes, const std::string& name);

/// `bytes` with one bit turned in the middle of them, and with `count` zeros there.
std::string withBitTurned(std::string bytes);
std::string withZeros(std::string bytes, std::size_t count);

/// `bytes` without the last `part` of them, a share between 0 and 1.
std::string cut(const std::string& bytes, double part);

/// Bytes without any order, the same for the same `seed`.
std::string noise(std::size_t count, std::uint32_t seed = 1);

} // namespace velmora::test
