#include "measure/frames/FrameHeader.h"

#include "measure/bytes/BitReader.h"

#include <array>
#include <limits>

namespace velmora {

namespace {

// The length of a frame follows from its header alone: MPEG audio by bit rate and sample rate, ADTS by a
// field. Both begin with a sync word; ADTS has the layer that MPEG audio reserves.
//
// MPEG audio (ISO/IEC 11172-3 section 2.4.1.3, 13818-3 section 2.4.1.3), bits from the highest on:
//
//   bits  field
//     11  sync word, all ones
//      2  version: 0 "2.5", 2 MPEG 2, 3 MPEG 1
//      2  layer: 1 layer 3, 2 layer 2, 3 layer 1; 0 is ADTS
//      1  no checksum
//      4  bit rate index; 0 free format
//      2  sample rate index
//      1  padding: one slot more
//      1  private
//      2  channel mode, 3 is mono
//      6  others
//
// ADTS (ISO/IEC 14496-3 section 1.A.2.2):
//
//   bits  field
//     12  sync word, all ones
//      1  MPEG version
//      2  layer, 0
//      1  no checksum
//      2  profile
//      4  sample rate index
//      1  private
//      3  channels; 7: eight, 0: what the sound itself says
//      4  others
//     13  bytes of the frame, header included
//     11  buffer fullness
//      2  blocks of 1024 samples less one
//     16  checksum, unless there is none
//
// After it comes a block of elements (ISO/IEC 14496-3 section 4.4.2.1), each with three bits that say what it
// is: 6 filling, 7 the end of the block, others sound or what belongs to it. Filling: 4 bits of size in
// bytes; 15 means that 8 bits follow, which say how many bytes there are beyond 14.

// Byte 1, bits 3 and 4.
enum class Version : std::uint8_t { v25 = 0, reserved = 1, v2 = 2, v1 = 3 };

constexpr std::uint8_t syncByte = 0xFF;
constexpr std::uint8_t syncMask = 0xE0;
constexpr std::size_t mpegHeaderBytes = 4;
constexpr std::size_t checksumBytes = 2;
constexpr std::uint32_t filling = 6;
constexpr std::uint32_t endOfBlock = 7;

using KilobitRow = std::array<std::int16_t, 15>; // by bit rate index; 0 is free format

constexpr KilobitRow v1Layer1 = {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448};
constexpr KilobitRow v1Layer2 = {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384};
constexpr KilobitRow v1Layer3 = {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
constexpr KilobitRow v2Layer1 = {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256};
constexpr KilobitRow v2Layer23 = {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};

constexpr std::array<std::int32_t, 3> v1Rates = {44'100, 48'000, 32'000};
constexpr std::array<std::int32_t, 13> aacRates = {96'000, 88'200, 64'000, 48'000, 44'100, 32'000, 24'000,
                                                   22'050, 16'000, 12'000, 11'025, 8'000,  7'350};

const KilobitRow& kilobitsOf(bool isVersion1, int layer) {
    switch (layer) {
    case 1:
        return isVersion1 ? v1Layer1 : v2Layer1;
    case 2:
        return isVersion1 ? v1Layer2 : v2Layer23;
    default:
        return isVersion1 ? v1Layer3 : v2Layer23;
    }
}

std::size_t adtsHeaderBytes(std::span<const std::uint8_t> frame) {
    const bool hasChecksum = (frame[1] & 0x01) == 0;
    return frameHeaderBytes + (hasChecksum ? checksumBytes : 0);
}

std::optional<AudioFrame> parseAdts(std::span<const std::uint8_t> bytes) {
    constexpr std::int32_t samplesOfBlock = 1024;
    if (bytes.size() < frameHeaderBytes || bytes[1] < 0xF0) {
        return std::nullopt;
    }
    const std::int32_t rate = aacRate(bytes[2] >> 2 & 0x0F);
    const std::int32_t length = (bytes[3] & 0x03) << 11 | bytes[4] << 3 | bytes[5] >> 5;
    const std::size_t header = adtsHeaderBytes(bytes);
    if (rate == 0 || length <= static_cast<std::int32_t>(header)) {
        return std::nullopt;
    }
    const std::int32_t blocks = (bytes[6] & 0x03) + 1;
    const std::uint32_t kind = static_cast<std::uint32_t>(bytes[1] & 0x1E) << 8 | (bytes[2] & 0xFCU);
    const bool mayBeFilling = blocks == 1 && (bytes.size() <= header || bytes[header] >= filling << 5);
    return AudioFrame{length, blocks * samplesOfBlock, rate, 0, kind, false, mayBeFilling};
}

} // namespace

std::optional<AudioFrame> parseFrame(std::span<const std::uint8_t> bytes, std::int32_t freeBytes) {
    if (bytes.size() < mpegHeaderBytes || bytes[0] != syncByte || (bytes[1] & syncMask) != syncMask) {
        return std::nullopt;
    }
    const auto version = static_cast<Version>(bytes[1] >> 3 & 0x03);
    const int layer = 4 - (bytes[1] >> 1 & 0x03); // 4 is ADTS
    if (layer == 4) {
        return parseAdts(bytes);
    }
    const std::size_t kilobitIndex = bytes[2] >> 4;
    const std::size_t rateIndex = bytes[2] >> 2 & 0x03;
    if (version == Version::reserved || kilobitIndex >= v1Layer1.size() || rateIndex >= v1Rates.size()) {
        return std::nullopt;
    }
    const bool isVersion1 = version == Version::v1;
    const std::int32_t rate = v1Rates[rateIndex] / (isVersion1 ? 1 : version == Version::v2 ? 2 : 4);
    const std::int32_t samples = layer == 1 ? 384 : layer == 3 && !isVersion1 ? 576 : 1152;
    const std::int32_t slotBytes = layer == 1 ? 4 : 1;
    const std::int32_t padding = (bytes[2] >> 1 & 0x01) * slotBytes;
    const std::int32_t bits = kilobitsOf(isVersion1, layer)[kilobitIndex] * 1000;
    const std::int32_t length =
        kilobitIndex == 0 ? freeBytes : samples / 8 / slotBytes * bits / rate * slotBytes;
    if (length <= 0) {
        return std::nullopt;
    }
    const std::uint32_t kind = static_cast<std::uint32_t>(bytes[1] & 0x1E) << 8 | (bytes[2] & 0x0CU);
    return AudioFrame{length + padding, samples, rate, bits, kind, layer == 3};
}

Sampling frameSampling(std::span<const std::uint8_t> bytes) {
    constexpr int monoMode = 3;
    constexpr std::int32_t eightChannels = 7;
    constexpr auto codings =
        std::to_array<FormatName>({"AAC", "MP3", "MP2", "MP1"}); // by the bits of the layer
    const auto frame = parseFrame(bytes, std::numeric_limits<std::int16_t>::max());
    if (!frame) {
        return {};
    }
    const std::size_t layer = bytes[1] >> 1 & 0x03;
    if (layer != 0) {
        return samplingOf(frame->rate, bytes[3] >> 6 == monoMode ? 1 : 2, codings[layer]);
    }
    const std::int32_t channels = (bytes[2] & 0x01) << 2 | bytes[3] >> 6;
    return samplingOf(frame->rate, channels == eightChannels ? 8 : channels, codings[layer]);
}

std::int32_t aacRate(std::size_t index) {
    return index < aacRates.size() ? aacRates[index] : 0;
}

bool holdsOnlyFilling(std::span<const std::uint8_t> frame) {
    if (frame.size() < frameHeaderBytes) {
        return false;
    }
    BitReader bits(frame);
    bits.skip(8 * adtsHeaderBytes(frame));
    std::uint32_t element = bits.take(3);
    while (element == filling) {
        std::uint32_t size = bits.take(4);
        size += size == 15 ? bits.take(8) - 1 : 0;
        bits.skip(8 * std::size_t{size});
        element = bits.take(3);
    }
    return element == endOfBlock;
}

std::optional<std::int32_t> freeFormatBytes(std::span<const std::uint8_t> bytes) {
    constexpr std::int32_t minBytes = 24;
    constexpr std::int32_t maxBytes = 8'000;
    constexpr int neededFollowers = 3;
    const auto frame = parseFrame(bytes, maxBytes);
    if (!frame || parseFrame(bytes)) {
        return std::nullopt;
    }
    const std::int32_t padding = frame->bytes - maxBytes;
    for (std::int32_t length = minBytes; length <= maxBytes; ++length) {
        auto at = static_cast<std::size_t>(length) + static_cast<std::size_t>(padding);
        int followers = 0;
        while (followers < neededFollowers && at < bytes.size()) {
            const auto next = parseFrame(bytes.subspan(at), length);
            if (!next || next->kind != frame->kind || parseFrame(bytes.subspan(at))) {
                break;
            }
            at += static_cast<std::size_t>(next->bytes);
            ++followers;
        }
        if (followers == neededFollowers || (followers > 0 && at == bytes.size())) {
            return length;
        }
    }
    return std::nullopt;
}

} // namespace velmora
