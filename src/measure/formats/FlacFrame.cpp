#include "measure/formats/FlacFrame.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Crc.h"

#include <array>
#include <bit>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// A frame is recognised by its sync word, the checksum of its header, and the sample rate of the stream or a
// frame before that it follows.
//
// STREAMINFO (RFC 9639, section 8.2), the highest byte of a number first:
//
//   offset  size  field
//        0     2  samples of the smallest block
//        2     2  samples of the largest block
//        4     3  bytes of the smallest frame
//        7     3  bytes of the largest frame
//       10     8  samples a second (20 bits), channels and bits (8), samples of the stream (36)
//       18    16  checksum of the sound
//
// Frame header (section 9.1):
//
//   bits  field                                                              section
//     15  sync word                                                          9.1
//      1  1: blocks of variable size, numbered by sample; 0: by frame        9.1
//      4  block size code                                                    9.1.1
//      4  sample rate code                                                   9.1.2
//      4  channels code                                                      9.1.3
//      3  bits of a sample code                                              9.1.4
//      1  zero                                                               9.1.4
//   8-56  number of the first sample or of the frame                         9.1.5
//   0-16  block size less one, for the codes 6 and 7                         9.1.6
//   0-16  sample rate, for the codes 12 to 14                                9.1.7
//      8  checksum of the header                                             9.1.8
//
// Frame footer (section 9.3): 16 bits of checksum of the whole frame.

constexpr std::size_t maxBlockAt = 2;
constexpr std::size_t maxFrameAt = 6; // of the four bytes whose lower three are the field
constexpr std::size_t packedAt = 10;
constexpr int rateShift = 44;
constexpr int channelsShift = 41; // less one
constexpr std::uint64_t samplesMask = 0xF'FFFF'FFFF;
constexpr std::size_t readStreamInfoBytes = 18; // as much of STREAMINFO as is looked at

constexpr std::size_t minHeaderBytes = 6;
constexpr std::uint8_t firstSync = 0xFF;
constexpr std::uint8_t fixedSync = 0xF8;
constexpr std::uint8_t variableSync = 0xF9;
constexpr std::size_t codedNumberAt = 4;
constexpr int maxChannelsCode = 10;
constexpr int reservedBitsCode = 3;

// Block size codes (section 9.1.1, table 14).
constexpr int reservedBlockCode = 0;
constexpr int block192Code = 1;
constexpr int firstBlock576Code = 2; // 576 times a power of two, up to code 5
constexpr int uncommonBlock8Code = 6;
constexpr int uncommonBlock16Code = 7;
constexpr int firstBlock256Code = 8; // 256 times a power of two

// Sample rate codes (section 9.1.2, table 15).
constexpr int streamRateCode = 0;
constexpr int kilohertzCode = 12;
constexpr int hertzCode = 13;
constexpr int tenHertzCode = 14;

constexpr std::array<std::int32_t, 12> ratesByCode = {0,      88'200, 176'400, 192'000, 8'000,  16'000,
                                                      22'050, 24'000, 32'000,  44'100,  48'000, 96'000};

/// The checksum of a header: polynomial x^8 + x^2 + x + 1 (section 9.1.8).
std::uint8_t checksum8(Bytes bytes) {
    constexpr std::uint8_t polynomial = 0x07;
    std::uint8_t sum = 0;
    for (const std::uint8_t byte : bytes) {
        sum ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            sum = static_cast<std::uint8_t>((sum << 1) ^ ((sum & 0x80) != 0 ? polynomial : 0));
        }
    }
    return sum;
}

/// Reads the fields of variable length of one header.
class HeaderCursor {
public:
    explicit HeaderCursor(Bytes bytes)
        : m_bytes(bytes) {}

    std::size_t position() const { return m_at; }

    std::optional<std::int64_t> integer(std::size_t count) {
        std::int64_t value = 0;
        for (std::size_t i = 0; i < count; ++i) {
            if (m_at >= m_bytes.size()) {
                return std::nullopt;
            }
            value = value << 8 | m_bytes[m_at++];
        }
        return value;
    }

    /// A number of up to 36 bits, coded like UTF-8 (section 9.1.5): the leading ones of the first byte count
    /// the bytes, the others carry six bits each.
    std::optional<std::int64_t> codedNumber() {
        const auto first = integer(1);
        if (!first) {
            return std::nullopt;
        }
        const int length = std::countl_one(static_cast<std::uint8_t>(*first));
        if (length == 0) {
            return first;
        }
        if (length == 1 || length == 8) {
            return std::nullopt;
        }
        std::int64_t value = *first & (0x7F >> length);
        for (int i = 1; i < length; ++i) {
            const auto next = integer(1);
            if (!next || (*next & 0xC0) != 0x80) {
                return std::nullopt;
            }
            value = value << 6 | (*next & 0x3F);
        }
        return value;
    }

private:
    Bytes m_bytes;
    std::size_t m_at = codedNumberAt;
};

std::optional<std::int64_t> blockSamples(int code, HeaderCursor& cursor) {
    switch (code) {
    case reservedBlockCode:
        return std::nullopt;
    case block192Code:
        return 192;
    case uncommonBlock8Code:
    case uncommonBlock16Code: {
        const auto lessOne = cursor.integer(code == uncommonBlock8Code ? 1 : 2);
        return lessOne ? std::optional(*lessOne + 1) : std::nullopt;
    }
    default:
        return code < uncommonBlock8Code ? 576 << (code - firstBlock576Code)
                                         : 256 << (code - firstBlock256Code);
    }
}

/// The sample rate that `code` stands for; absent if it is none, or not stated by the stream either.
std::optional<std::int32_t> sampleRate(int code, HeaderCursor& cursor, std::int32_t streamRate) {
    std::int64_t rate = 0;
    switch (code) {
    case streamRateCode:
        rate = streamRate;
        break;
    case kilohertzCode:
        rate = cursor.integer(1).value_or(0) * 1000;
        break;
    case hertzCode:
        rate = cursor.integer(2).value_or(0);
        break;
    case tenHertzCode:
        rate = cursor.integer(2).value_or(0) * 10;
        break;
    default:
        rate = code < static_cast<int>(ratesByCode.size()) ? ratesByCode[static_cast<std::size_t>(code)] : 0;
    }
    return rate > 0 ? std::optional(static_cast<std::int32_t>(rate)) : std::nullopt;
}

} // namespace

std::optional<FlacStreamInfo> parseStreamInfo(Bytes block) {
    if (block.size() < readStreamInfoBytes) {
        return std::nullopt;
    }
    const std::uint64_t packed = be64(block, packedAt);
    return FlacStreamInfo{
        be16(block, maxBlockAt), static_cast<std::int32_t>(be32(block, maxFrameAt) & 0xFF'FFFF),
        static_cast<std::int32_t>(packed >> rateShift), static_cast<std::int64_t>(packed & samplesMask),
        static_cast<std::int32_t>(packed >> channelsShift & 0x07) + 1};
}

std::optional<FlacFrame> parseFlacFrame(Bytes bytes, const FlacStreamInfo& stream) {
    if (bytes.size() < minHeaderBytes || bytes[0] != firstSync ||
        (bytes[1] != fixedSync && bytes[1] != variableSync) || (bytes[3] & 0x01) != 0 ||
        bytes[3] >> 4 > maxChannelsCode || (bytes[3] >> 1 & 0x07) == reservedBitsCode) {
        return std::nullopt;
    }
    HeaderCursor cursor(bytes);
    const auto number = cursor.codedNumber();
    const auto samples = number ? blockSamples(bytes[2] >> 4, cursor) : std::nullopt;
    const auto rate = samples ? sampleRate(bytes[2] & 0x0F, cursor, stream.rate) : std::nullopt;
    if (!rate) {
        return std::nullopt;
    }
    const std::size_t length = cursor.position();
    if (cursor.integer(1) != checksum8(bytes.first(length))) {
        return std::nullopt;
    }
    const bool isFixed = bytes[1] == fixedSync;
    return FlacFrame{.firstSample = isFixed ? *number * stream.blockSamples : *number,
                     .number = *number,
                     .samples = *samples,
                     .rate = *rate,
                     .hasFixedSize = isFixed};
}

std::optional<FlacFrame> flacFrameBefore(Bytes bytes, std::size_t end, const FlacStreamInfo& stream) {
    for (std::size_t at = end; at-- > 0;) {
        if (bytes[at] != firstSync) {
            continue;
        }
        const Bytes rest = bytes.subspan(at);
        if (auto frame = parseFlacFrame(rest.first(std::min(rest.size(), maxFlacHeaderBytes)), stream)) {
            frame->at = at;
            return frame;
        }
    }
    return std::nullopt;
}

bool follows(const FlacFrame& next, const FlacFrame& frame) {
    return next.rate == frame.rate && next.hasFixedSize == frame.hasFixedSize &&
           next.number == frame.number + (frame.hasFixedSize ? 1 : frame.samples) &&
           (!frame.hasFixedSize || next.samples <= frame.samples);
}

std::optional<FlacFrame> lastFlacFrame(Bytes bytes, const FlacStreamInfo& stream) {
    auto frame = flacFrameBefore(bytes, bytes.size(), stream);
    while (frame && frame->rate != stream.rate) {
        const auto before = flacFrameBefore(bytes, frame->at, stream);
        if (before && follows(*frame, *before)) {
            break;
        }
        frame = before;
    }
    return frame;
}

bool isWholeFlacFrame(Bytes frame) {
    return Crc16::after(0, frame) == 0 && !frame.empty();
}

} // namespace velmora
