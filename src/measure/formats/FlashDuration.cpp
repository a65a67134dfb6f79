#include "measure/formats/FlashDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"
#include "measure/formats/JoinedFiles.h"
#include "measure/libav/Libav.h"

namespace velmora {

namespace {

// Adobe Flash Video File Format Specification 10.1, annex E. The header, and 4 bytes after it:
//
//   offset  size  field
//        0     3  "FLV"
//        3     1  version, 1
//        4     1  flags
//        5     4  bytes of the header, the highest first
//
// then tags, and after each tag 4 bytes of its size:
//
//   offset  size  field
//        0     1  kind: 8 sound, 9 pictures, 18 data
//        1     3  bytes after the header
//        4     7  time, stream

constexpr std::size_t headerSizeAt = 5;
constexpr std::int64_t fileHeaderBytes = 9;
constexpr std::int64_t tagHeaderBytes = 11;
constexpr std::int64_t sizeBytes = 4;
constexpr std::uint8_t sound = 8;
constexpr std::uint8_t pictures = 9;
constexpr std::uint8_t data = 18;

/// Where the tags of the file that begins at `start` end: another file follows, or what is no tag.
std::int64_t endOfFlash(GuardedReader& reader, std::int64_t start) {
    const auto header = reader.header(start, fileHeaderBytes);
    std::int64_t at = start + sizeBytes + (header.empty() ? fileHeaderBytes : be32(header, headerSizeAt));
    for (;;) {
        const auto tag = reader.header(at, tagHeaderBytes);
        if (matches(tag, "FLV\x01")) {
            return at;
        }
        if (tag.empty() || (tag[0] != sound && tag[0] != pictures && tag[0] != data)) {
            return reader.size();
        }
        reader.renew();
        at += tagHeaderBytes + (be32(tag, 0) & 0xFF'FFFF) + sizeBytes;
    }
}

} // namespace

std::optional<Timing> flashDuration(GuardedReader& reader, std::int64_t start) {
    return joinedTiming(
        reader, start, [&reader](std::int64_t at) { return endOfFlash(reader, at); },
        [](GuardedReader& part, std::int64_t at) { return libav().duration(part, at, "flv", Doubt::none); });
}

} // namespace velmora
