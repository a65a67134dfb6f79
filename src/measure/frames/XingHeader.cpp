#include "measure/frames/XingHeader.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// None of the three is part of a standard; the layouts follow what their encoders write (LAME's in "Mp3 Info
// Tag revision 1"). The highest byte of a number comes first.
//
// VBRI, 32 bytes after the frame header:
//
//   offset  size  field
//        0     4  "VBRI"
//        4     2  version
//        6     2  delay
//        8     2  quality
//       10     4  bytes
//       14     4  frames
//
// Xing, after the frame header and the side information, whose size depends on the version, on the channels
// and on whether a checksum stands before it. Encoders disagree about the last, and some leave a frame of one
// channel before the frames of two: so each place is looked at, whatever the frame header says.
//
//   offset  size  field
//        0     4  "Xing" or "Info"
//        4     4  flags
//        8     4  frames              if flag 1 is set
//              4  bytes               if flag 2 is set
//            100  table of contents   if flag 4 is set
//              4  quality             if flag 8 is set
//
// LAME, after that:
//
//   offset  size  field
//        0     9  name and version of the encoder
//       21     3  samples that the encoder added at the start (12 bits) and at the end (12 bits)

constexpr std::size_t layer3HeaderBytes = 4;
constexpr std::size_t vbriAt = layer3HeaderBytes + 32;
constexpr std::size_t vbriBytesAt = 10;
constexpr std::size_t vbriFramesAt = 14;
constexpr std::size_t vbriSize = 18;

constexpr std::size_t xingFlagsAt = 4;
constexpr std::size_t xingFieldsAt = 8;
constexpr std::uint32_t hasFrames = 1;
constexpr std::uint32_t hasBytes = 2;
constexpr std::uint32_t hasContents = 4;
constexpr std::uint32_t hasQuality = 8;
constexpr std::size_t contentsBytes = 100;

constexpr std::size_t lameTrimAt = 21;
constexpr std::size_t lameSize = 24;
constexpr std::int64_t decoderDelay =
    529; // samples that every layer 3 decoder adds, not counted by the encoder

/// Bytes that may stand between the frame header and the statement (ISO/IEC 11172-3 section 2.4.1.7, 13818-3
/// section 2.4.1.7): the side information of one and of two channels, with and without two of checksum.
constexpr auto bytesBeforeXing = std::to_array<std::size_t>({32, 17, 9, 34, 19, 11});

/// From "Xing" or "Info" on; empty if neither stands in `frame`, which is long enough for the last place.
Bytes findXing(Bytes frame) {
    for (const std::size_t before : bytesBeforeXing) {
        const Bytes xing = frame.subspan(layer3HeaderBytes + before);
        if (matches(xing, "Xing") || matches(xing, "Info")) {
            return xing;
        }
    }
    return {};
}

void parseLame(Bytes lame, XingHeader& header) {
    const bool isKnown = matches(lame, "LAME") || matches(lame, "Lavf") || matches(lame, "Lavc");
    if (!isKnown || lame.size() < lameSize) {
        return;
    }
    const std::uint32_t trim = be32(lame, lameTrimAt - 1) & 0xFF'FFFF;
    header.startTrim = (trim >> 12) + decoderDelay;
    header.endTrim = std::max<std::int64_t>(0, (trim & 0xFFF) - decoderDelay);
}

} // namespace

std::optional<XingHeader> parseXing(Bytes frame) {
    if (frame.size() < vbriAt + vbriSize) {
        return std::nullopt;
    }
    if (const Bytes vbri = frame.subspan(vbriAt); matches(vbri, "VBRI")) {
        return XingHeader{be32(vbri, vbriFramesAt), be32(vbri, vbriBytesAt), 0, 0};
    }
    Bytes xing = findXing(frame);
    if (xing.empty()) {
        return std::nullopt;
    }
    const std::uint32_t flags = be32(xing, xingFlagsAt);
    xing = xing.subspan(xingFieldsAt);
    const auto skip = [&xing](std::size_t count) { xing = xing.subspan(std::min(count, xing.size())); };
    const auto take = [&](std::uint32_t flag) -> std::optional<std::int64_t> {
        if ((flags & flag) == 0 || xing.size() < 4) {
            return std::nullopt;
        }
        const std::uint32_t value = be32(xing, 0);
        skip(4);
        return value;
    };
    XingHeader header;
    header.frames = take(hasFrames);
    header.bytes = take(hasBytes);
    skip((flags & hasContents) != 0 ? contentsBytes : 0);
    skip((flags & hasQuality) != 0 ? 4 : 0);
    parseLame(xing, header);
    return header;
}

} // namespace velmora
