#include "measure/formats/AuDuration.h"

#include "measure/bytes/ByteOrder.h"

#include <algorithm>

namespace velmora {

namespace {

// The encoding tells the bits of a sample; the bytes of the data, as far as they are in the file, make the
// length.
//
// Header (NeXT and Sun, <audio/au_filehdr.h>):
//
//   offset  size  field
//        0     4  ".snd" or ".sd" and a NUL (DEC); backwards where the lowest byte of a number comes first
//        4     4  where the data begin
//        8     4  size of the data; all ones: not known
//       12     4  encoding
//       16     4  frames a second
//       20     4  channels

constexpr std::size_t headerBytes = 24;
constexpr std::size_t dataOffsetAt = 4;
constexpr std::size_t dataSizeAt = 8;
constexpr std::size_t encodingAt = 12;
constexpr std::size_t rateAt = 16;
constexpr std::size_t channelsAt = 20;
constexpr std::int64_t unknownSize = 0xFFFF'FFFF;

/// Bits of a sample; 0 for encodings that are not a constant number of bits.
int bitsOf(std::uint32_t encoding) {
    switch (encoding) {
    case 1:  // mu-law
    case 2:  // linear
    case 27: // A-law
        return 8;
    case 3:
        return 16;
    case 4:
        return 24;
    case 5:
    case 6: // floating point
        return 32;
    case 7: // floating point
        return 64;
    case 23: // G.721
    case 24: // G.722
        return 4;
    case 25: // G.723
        return 3;
    case 26: // G.723
        return 5;
    default:
        return 0;
    }
}

} // namespace

std::optional<Timing> auDuration(GuardedReader& reader, std::int64_t start) {
    const auto header = reader.header(start, headerBytes);
    if (header.empty()) {
        return std::nullopt;
    }
    const bool isBigEndian = header[0] == '.';
    const auto field = [&](std::size_t at) { return isBigEndian ? be32(header, at) : le32(header, at); };
    const std::int64_t rest = reader.size() - start - field(dataOffsetAt);
    const std::int64_t stated = field(dataSizeAt);
    const bool isKnown = stated != unknownSize && stated != 0;
    const std::int64_t bytes = isKnown ? std::min(stated, rest) : rest;
    const std::int64_t frameBits = std::int64_t{bitsOf(field(encodingAt))} * field(channelsAt);
    const double rate = field(rateAt);
    if (frameBits == 0 || rate == 0) {
        return std::nullopt;
    }
    const auto secondsOf = [frameBits, rate](std::int64_t size) {
        const std::int64_t frames = std::max<std::int64_t>(0, size) * 8 / frameBits;
        return static_cast<double>(frames) / rate;
    };
    return sampled(sizedTiming(secondsOf(bytes), isKnown ? std::optional(secondsOf(stated)) : std::nullopt),
                   samplingOf(rate, field(channelsAt)));
}

} // namespace velmora
