#include "measure/formats/MusepackPacket.h"

#include <cstddef>
#include <iterator>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Version 8 ("SV8 specification"): "MPCK", then packets: key (2), size of the whole packet (number), content.
// A number stands in groups of 7 bits, the highest first; every byte but the last has the highest bit set.
//
// "SH": checksum (4), version (1), samples (number; 0: not known), of these to be left out at the start
// (number), the sample rate in the 3 highest bits of the next byte, the frames of a packet as a power of 4 in
// the 3 lowest of the byte after it, the channels less one in the 4 highest of that.

/// The number that `bytes` begin with; the bytes it takes are cut from them.
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

} // namespace

std::optional<MusepackPacket> parseMusepackPacket(Bytes bytes) {
    const auto isCapital = [](std::uint8_t byte) { return byte >= 'A' && byte <= 'Z'; };
    if (bytes.size() < minMusepackPacketBytes || !isCapital(bytes[0]) || !isCapital(bytes[1])) {
        return std::nullopt;
    }
    Bytes content = bytes.subspan(2);
    const auto size = takeNumber(content);
    return size && *size >= minMusepackPacketBytes ? std::optional(MusepackPacket{*size, content})
                                                   : std::nullopt;
}

std::optional<MusepackStream> parseMusepackStream(Bytes content) {
    constexpr std::size_t numbersAt = 5;
    if (content.size() < numbersAt) {
        return std::nullopt;
    }
    content = content.subspan(numbersAt);
    const auto samples = takeNumber(content);
    const auto silence = takeNumber(content);
    if (!samples || !silence || content.size() < 2 || content[0] >> 5 >= std::ssize(musepackRates)) {
        return std::nullopt;
    }
    return MusepackStream{*samples,
                          *silence,
                          musepackRates[content[0] >> 5],
                          (content[1] >> 4) + 1,
                          musepackFrameSamples << 2 * (content[1] & 0x07),
                          {content[0], content[1]}};
}

} // namespace velmora
