#include "measure/MusepackDuration.h"

#include "measure/LittleEndian.h"
#include "measure/Magic.h"

#include <algorithm>
#include <array>

namespace velmora {

namespace {

using HeaderDuration::le32;
using Bytes = std::span<const std::uint8_t>;

constexpr std::array<int, 4> rates = {44'100, 48'000, 37'800, 32'000};
constexpr std::int64_t frameSamples = 1152;
constexpr std::int64_t decoderDelay = 481;

/// Six words: 1 frames, 2 rate in bits 16 and 17, 5 whether the last frame's length is exact (bit 31) and
/// that length (bits 20 to 30).
double version7Seconds(Bytes header) {
    constexpr std::size_t framesAt = 4;
    constexpr std::size_t rateAt = 8;
    constexpr std::size_t lastAt = 20;
    const std::int64_t frames = le32(header, framesAt);
    const std::uint32_t last = le32(header, lastAt);
    const bool isExact = last >> 31 != 0;
    const std::int64_t lastSamples = last >> 20 & 0x7FF;
    const std::int64_t samples =
        frames * frameSamples - (isExact ? frameSamples - lastSamples : decoderDelay);
    return static_cast<double>(std::max<std::int64_t>(0, samples)) / rates[le32(header, rateAt) >> 16 & 0x03];
}

/// A number in groups of 7 bits, the highest first; the bytes it takes are cut from `bytes`.
std::optional<std::int64_t> takeNumber(Bytes& bytes) {
    std::int64_t value = 0;
    while (!bytes.empty() && value < 1LL << 48) {
        const std::uint8_t byte = bytes.front();
        bytes = bytes.subspan(1);
        value = value << 7 | (byte & 0x7F);
        if ((byte & 0x80) == 0) {
            return value;
        }
    }
    return std::nullopt;
}

/// Packets: key (2), size of the whole (number). "SH" holds checksum (4), version (1), samples (number), of
/// these to be left out at the start (number), then the rate in the 3 highest bits.
std::optional<double> version8Seconds(GuardedReader& reader, std::int64_t at) {
    constexpr std::size_t numbersAt = 5;
    constexpr std::int64_t longestPacketHead = 40;
    for (;;) {
        Bytes packet = reader.header(
            at, static_cast<std::size_t>(std::clamp<std::int64_t>(reader.size() - at, 0, longestPacketHead)));
        if (packet.size() < 3 || matches(packet, "AP")) {
            return std::nullopt;
        }
        const bool isStreamHeader = matches(packet, "SH");
        packet = packet.subspan(2);
        const auto size = takeNumber(packet);
        if (!size || *size < 3) {
            return std::nullopt;
        }
        if (isStreamHeader && packet.size() > numbersAt) {
            packet = packet.subspan(numbersAt);
            const auto samples = takeNumber(packet);
            const auto silence = takeNumber(packet);
            const std::size_t rate = packet.empty() ? rates.size() : packet[0] >> 5;
            if (!samples || !silence || rate >= rates.size() || *samples <= *silence) {
                return std::nullopt;
            }
            return static_cast<double>(*samples - *silence) / rates[rate];
        }
        at += *size;
    }
}

} // namespace

std::optional<double> musepackDuration(GuardedReader& reader, std::int64_t start) {
    constexpr std::size_t version7Bytes = 24;
    constexpr std::int64_t magicBytes = 4;
    if (matches(reader.header(start, magicBytes), "MPCK")) {
        return version8Seconds(reader, start + magicBytes);
    }
    const Bytes header = reader.header(start, version7Bytes);
    if (!matches(header, "MP+") || (header[3] & 0x0F) != 7) {
        return std::nullopt;
    }
    return version7Seconds(header);
}

} // namespace velmora
