#include "measure/bytes/AudioTags.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"

#include <algorithm>
#include <charconv>

namespace velmora {

namespace {

constexpr std::int64_t id3v1Bytes = 128;
constexpr std::int64_t apeFooterBytes = 32; // "APETAGEX", version, size (items and footer), count, flags
constexpr std::size_t apeSizeAt = 12;
constexpr std::size_t apeFlagsAt = 20;
constexpr std::uint32_t apeHasHeader = 0x8000'0000;
constexpr std::int64_t lyricsFooterBytes = 15; // six digits of size, "LYRICS200"

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
        std::from_chars(digits, digits + 6, size);
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
    const std::int64_t edges = (header[flagsAt] & hasFooter) != 0 ? 2 : 1;
    return size + edges * static_cast<std::int64_t>(id3HeaderBytes);
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
    reader.header(std::max<std::int64_t>(start, end - 512),
                  static_cast<std::size_t>(std::min<std::int64_t>(512, end - start)));
    while (const std::int64_t tag = tagBytesBefore(reader, end)) {
        if (tag > end - start) {
            break;
        }
        end -= tag;
    }
    return end;
}

} // namespace velmora
