#include "measure/check/TagLength.h"

#include "measure/bytes/AudioTags.h"
#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"

#include <charconv>
#include <string>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Tag (id3.org, ID3v2.2 section 3.1, ID3v2.3 section 3.1, ID3v2.4 section 3.1): header (10), from version 3
// on an extended header if flag 0x40 is set, which begins with its size (4), then frames:
//
//   version  header of a frame
//         2  name (3), size (3)
//         3  name (4), size (4), flags (2)
//         4  name (4), size (4, of 7 bits each), flags (2)

constexpr std::size_t versionAt = 3;
constexpr std::size_t flagsAt = 5;
constexpr std::uint8_t hasExtendedHeader = 0x40;

/// A number of four bytes of 7 bits.
std::int64_t sevenBits(std::uint32_t size) {
    return (size & 0x7F) | (size >> 1 & 0x3F80) | (size >> 2 & 0x1F'C000) | (size >> 3 & 0xFE0'0000);
}

struct TagLayout {
    int version = 0;

    std::int64_t nameBytes() const { return version == 2 ? 3 : 4; }

    std::int64_t headerBytes() const { return version == 2 ? 6 : 10; }

    std::int64_t sizeIn(Bytes header) const {
        if (version == 2) {
            return be32(header, 2) & 0xFF'FFFF;
        }
        const std::uint32_t size = be32(header, 4);
        return version == 4 ? sevenBits(size) : size;
    }
};

/// Where the first frame of the tag stands.
std::int64_t firstFrameAt(GuardedReader& reader, const TagLayout& layout, Bytes tag) {
    const bool isExtended = layout.version > 2 && (tag[flagsAt] & hasExtendedHeader) != 0;
    const auto at = static_cast<std::int64_t>(id3HeaderBytes);
    const Bytes size = isExtended ? reader.header(at, 4) : Bytes();
    if (size.empty()) {
        return at;
    }
    return at + (layout.version == 4 ? sevenBits(be32(size, 0)) : std::int64_t{4} + be32(size, 0));
}

/// The digits of a text frame, whatever its encoding.
std::optional<double> parsedLength(Bytes text) {
    std::string digits;
    for (const std::uint8_t byte : text) {
        if (byte >= '0' && byte <= '9') {
            digits += static_cast<char>(byte);
        }
    }
    double milliseconds = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), milliseconds);
    return milliseconds > 0 ? std::optional(milliseconds / 1000) : std::nullopt;
}

} // namespace

std::optional<double> lengthInTag(GuardedReader& reader) {
    constexpr std::size_t maxTextBytes = 64;
    const Bytes tag = reader.header(0, id3HeaderBytes);
    const auto bytes = id3TagBytes(tag);
    if (!bytes || tag[versionAt] < 2 || tag[versionAt] > 4) {
        return std::nullopt;
    }
    const TagLayout layout{tag[versionAt]};
    std::int64_t at = firstFrameAt(reader, layout, tag);
    while (at + layout.headerBytes() < *bytes) {
        const Bytes header = reader.header(at, static_cast<std::size_t>(layout.headerBytes()));
        if (header.empty() || header[0] == 0) { // padding
            break;
        }
        const std::int64_t size = layout.sizeIn(header);
        const bool isLength = matches(header, layout.version == 2 ? "TLE" : "TLEN");
        at += layout.headerBytes();
        if (isLength) {
            return parsedLength(reader.headerUpTo(at, maxTextBytes, at + size));
        }
        at += size;
    }
    return std::nullopt;
}

} // namespace velmora
