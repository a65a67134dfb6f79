#include "measure/formats/Mp4Sound.h"

#include "measure/bytes/ByteOrder.h"

#include <array>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Boxes, the highest byte of a number first:
//
//   box     content
//   "stsd"  version and flags (4), entries (4), the entries, which are         ISO/IEC 14496-12 section 8.5.2
//           boxes named after the codec
//   entry   reserved (6), data reference (2), version (2), reserved (6),       section 12.2.3; of versions 1
//           channels (2), bits of a sample (2), reserved (4), samples a        and 2: QuickTime File Format,
//           second (4, of which 2 are a fraction), boxes                       "Sound Sample Descriptions"
//   "esds"  version and flags (4), descriptors                                 ISO/IEC 14496-14 section 6.7
//
// A descriptor (ISO/IEC 14496-1 section 7.2.2) is a tag (1), the size of its content in groups of 7 bits, and
// its content: of the stream (tag 3) its number (2) and flags (1), then descriptors; of its decoder (tag 4)
// 13 bytes, then descriptors; what the decoder is told (tag 5) begins, for AAC, with the kind of object (5
// bits), the index of the rate (4 bits), and the channels (4 bits) (ISO/IEC 14496-3 section 1.6.2.1).

constexpr std::int64_t firstEntryAt = 8;
constexpr std::size_t entryBytes = 28;
constexpr std::size_t versionAt = 8;
constexpr std::size_t channelsAt = 16;
constexpr std::size_t rateAt = 24;

constexpr std::array<std::int32_t, 13> aacRates = {96'000, 88'200, 64'000, 48'000, 44'100, 32'000, 24'000,
                                                   22'050, 16'000, 12'000, 11'025, 8'000,  7'350};

/// The content of the descriptor that `bytes` begin with, as much of it as is there; none if it has another
/// tag.
Bytes descriptor(Bytes bytes, std::uint8_t tag) {
    if (bytes.empty() || bytes[0] != tag) {
        return {};
    }
    constexpr std::uint8_t goesOn = 0x80;
    std::size_t at = 1;
    while (at < bytes.size() && (bytes[at] & goesOn) != 0) {
        ++at;
    }
    return bytes.subspan(std::min(at + 1, bytes.size()));
}

Bytes without(Bytes bytes, std::size_t count) {
    return bytes.subspan(std::min(count, bytes.size()));
}

/// What "esds" tells the decoder of AAC; not known for others.
Sampling aacSampling(Bytes box) {
    constexpr std::size_t streamHeadBytes = 3;
    constexpr std::size_t decoderHeadBytes = 13;
    const Bytes decoder = descriptor(without(descriptor(box, 3), streamHeadBytes), 4);
    const Bytes told = descriptor(without(decoder, decoderHeadBytes), 5);
    if (told.size() < 2) {
        return {};
    }
    constexpr std::int32_t maxCode = 7; // of eight channels
    const std::size_t rate = (told[0] & 0x07) << 1 | told[1] >> 7;
    const std::int32_t code = told[1] >> 3 & 0x0F;
    return rate < aacRates.size() && code <= maxCode ? samplingOf(aacRates[rate], code == maxCode ? 8 : code)
                                                     : Sampling();
}

} // namespace

Sampling mp4Sampling(GuardedReader& reader, const Mp4Box& sampleTable) {
    const auto descriptions = findMp4Box(reader, sampleTable, mp4Type("stsd"));
    const auto entry = descriptions
                           ? mp4BoxAt(reader, descriptions->content + firstEntryAt, descriptions->end)
                           : std::nullopt;
    const Bytes fields = entry ? reader.header(entry->content, entryBytes) : Bytes();
    if (fields.empty() || be16(fields, versionAt) != 0) {
        return {};
    }
    const Sampling stated = samplingOf(be16(fields, rateAt), be16(fields, channelsAt));
    const Mp4Box rest{entry->type, entry->content + static_cast<std::int64_t>(entryBytes), entry->end};
    const auto codec = findMp4Box(reader, rest, mp4Type("esds"));
    const Sampling told =
        codec ? aacSampling(reader.headerUpTo(codec->content + mp4FullBoxBytes, 64, codec->end)) : Sampling();
    return told.rate > 0 && told.channels > 0 ? told : stated;
}

} // namespace velmora
