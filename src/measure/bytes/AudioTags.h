#pragma once

// The tags that stand before and after audio without belonging to it, in whatever format the audio is. They
// are stepped over, never read: a tag may hold a picture of many megabytes.

#include "measure/bytes/GuardedReader.h"

#include <cstdint>
#include <optional>
#include <span>

namespace velmora {

inline constexpr std::size_t id3HeaderBytes = 10;

/// The whole size of the ID3v2 tag whose first `id3HeaderBytes` bytes are `header`; absent if it is none.
/// Layout (id3.org, ID3v2.4 section 3.1): "ID3", 2 bytes of version, flags (0x10: footer), 4 bytes of size of
/// 7 bits each.
std::optional<std::int64_t> id3TagBytes(std::span<const std::uint8_t> header);

/// The whole size of the tag that `bytes` begin with: ID3v2, APEv2 with a header, or ID3v1. 0 if there is
/// none.
std::int64_t tagBytesAt(std::span<const std::uint8_t> bytes);

/// Where the first byte after the ID3v2 tags at the start of the file stands. Tags may be repeated.
std::int64_t skipLeadingTags(GuardedReader& reader);

/// Where the tags at the end begin: ID3v1 ("TAG", 128 bytes), APEv2 ("APETAGEX", its footer states the size)
/// and Lyrics3v2, in any order; the file's size when there are none.
std::int64_t findTrailingTags(GuardedReader& reader, std::int64_t start);

} // namespace velmora
