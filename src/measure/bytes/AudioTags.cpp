#include "measure/bytes/AudioTags.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"

#include <algorithm>
#include <charconv>

namespace velmora {

namespace {

// At the end of a file the tags are looked for one by one, from the last to the first: each of the three
// kinds has a mark at or near its end, and states its size.
//
// ID3v1 (id3.org, "ID3v1"): 128 bytes that begin with "TAG".
//
// APEv2 (Hydrogenaudio Knowledgebase, "APEv2 specification"), header and footer:
//
//   offset  size  field
//        0     8  "APETAGEX"
//        8     4  version
//       12     4  size of the items and the footer
//       16     4  number of items
//       20     4  flags; bit 31: there is a header
//       24     8  reserved
//
// Lyrics3v2 (id3.org, "Lyrics3 v2.00"), footer:
//
//   offset  size  field
//        0     6  size of what comes before, in decimal digits
//        6     9  "LYRICS200"

constexpr std::int64_t id3v1Bytes = 128;
constexpr std::int64_t apeFooterBytes = 32;
constexpr std::size_t apeSizeAt = 12;
constexpr std::size_t apeFlagsAt = 20;
constexpr std::uint32_t apeHasHeader = 0x8000'0000;
constexpr std::int64_t lyricsFooterBytes = 15;
constexpr std::size_t lyricsSizeDigits = 6;

/// The tag that ends at `end`; 0 if there is none.
std::int64_t tagBytesBefore(GuardedReader& reader, std::int64_t end) {
    if (matches(reader.header(end - id3v1Bytes, 3), "TAG")) {
        return id3v1Bytes;
    }
    if (const auto footer = reader.header(end - apeFooterBytes, apeFooterBytes);
        matches(footer, "APETAGEX")) {
        const std::int64_t size = le32(footer, apeSizeAt);
        const bool hasHeader = (le32(footer, apeFlagsAt) & apeHasHeader) != 0;
        return std::max(size, apeFooterBytes) + (hasHeader ? apeFooterBytes : 0);
    }
    if (const auto footer = reader.header(end - lyricsFooterBytes, lyricsFooterBytes);
        matches(footer, "??????LYRICS200")) {
        const auto* const digits = reinterpret_cast<const char*>(footer.data());
        std::int64_t size = 0;
        std::from_chars(digits, digits + lyricsSizeDigits, size);
        return std::max<std::int64_t>(size, 0) + lyricsFooterBytes;
    }
    return 0;
}

} // namespace

std::optional<std::int64_t> id3TagBytes(std::span<const std::uint8_t> header) {
    constexpr std::size_t versionAt = 3;
    constexpr std::size_t flagsAt = 5;
    constexpr std::size_t sizeAt = 6;
    constexpr std::uint8_t hasFooter = 0x10;
    if (header.size() < id3HeaderBytes || !matches(header, "ID3") || header[versionAt] == 0xFF ||
        header[versionAt + 1] == 0xFF) {
        return std::nullopt;
    }
    std::int64_t size = 0;
    for (const std::uint8_t byte : header.subspan(sizeAt, 4)) {
        if (byte >= 0x80) {
            return std::nullopt;
        }
        size = size << 7 | byte;
    }
    const std::int64_t headers = (header[flagsAt] & hasFooter) != 0 ? 2 : 1;
    return size + headers * static_cast<std::int64_t>(id3HeaderBytes);
}

std::int64_t tagBytesAt(std::span<const std::uint8_t> bytes) {
    if (matches(bytes, "TAG")) {
        return id3v1Bytes;
    }
    if (matches(bytes, "APETAGEX") && bytes.size() >= static_cast<std::size_t>(apeFooterBytes)) {
        return le32(bytes, apeSizeAt) + apeFooterBytes;
    }
    return id3TagBytes(bytes.first(std::min(bytes.size(), id3HeaderBytes))).value_or(0);
}

std::int64_t skipLeadingTags(GuardedReader& reader) {
    std::int64_t start = 0;
    while (const auto tag = id3TagBytes(reader.header(start, id3HeaderBytes))) {
        start += *tag;
    }
    return std::min(start, reader.size());
}

std::int64_t findTrailingTags(GuardedReader& reader, std::int64_t start) {
    std::int64_t end = reader.size();
    // One read brings the ends of all the tags there usually are.
    constexpr std::int64_t usualTagBytes = 512;
    reader.headerUpTo(std::max(start, end - usualTagBytes), usualTagBytes);
    while (const std::int64_t tag = tagBytesBefore(reader, end)) {
        if (tag > end - start) {
            break;
        }
        end -= tag;
    }
    return end;
}

} // namespace velmora
