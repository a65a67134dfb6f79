#include "measure/frames/XingHeader.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"

#include <algorithm>
#include <cstddef>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// VBRI: offset 0 "VBRI", 4 version, 6 delay, 8 quality, 10 bytes, 14 frames.
constexpr std::size_t vbriAt = 4 + 32;
constexpr std::size_t vbriBytesAt = 10;
constexpr std::size_t vbriFramesAt = 14;
constexpr std::size_t vbriSize = 18;

// Xing: offset 0 "Xing", 4 flags; then, each if its flag is set: frames, bytes, table of contents, quality.
constexpr std::size_t xingFlagsAt = 4;
constexpr std::size_t xingFieldsAt = 8;
constexpr std::uint32_t hasFrames = 1;
constexpr std::uint32_t hasBytes = 2;
constexpr std::uint32_t hasContents = 4;
constexpr std::uint32_t hasQuality = 8;
constexpr std::size_t contentsBytes = 100;

// LAME: offset 0 encoder's name and version, 21 delay (12 bits) and padding (12 bits).
constexpr std::size_t lameTrimAt = 21;
constexpr std::size_t lameSize = 24;
constexpr std::int64_t decoderDelay = 529; // every layer 3 decoder's own, not counted by the encoder

std::size_t sideInformationBytes(Bytes frame) {
    const bool isVersion1 = (frame[1] & 0x18) == 0x18;
    const bool isMono = (frame[3] & 0xC0) == 0xC0;
    return isVersion1 ? (isMono ? 17 : 32) : (isMono ? 9 : 17);
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
    Bytes xing = frame.subspan(4 + sideInformationBytes(frame));
    if ((!matches(xing, "Xing") && !matches(xing, "Info")) || xing.size() < xingFieldsAt) {
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
