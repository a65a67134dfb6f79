#pragma once

// The packets that a Musepack file of stream version 8 is made of.

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace velmora {

inline constexpr std::array<int, 4> musepackRates = {44'100, 48'000, 37'800, 32'000};
inline constexpr std::int64_t musepackFrameSamples = 1152;
inline constexpr std::int64_t minMusepackPacketBytes = 3;

/// A packet of version 8.
struct MusepackPacket {
    std::int64_t bytes = 0;                ///< of the whole
    std::span<const std::uint8_t> content; ///< as much of it as there was to parse
};

/// Absent if `bytes` begin with no packet.
std::optional<MusepackPacket> parseMusepackPacket(std::span<const std::uint8_t> bytes);

/// What "SH" states.
struct MusepackStream {
    std::int64_t samples = 0; ///< 0: not known
    std::int64_t silence = 0; ///< samples to be left out at the start
    int rate = 0;
    int channels = 0;
    std::int64_t packetSamples = 0;
    std::array<std::uint8_t, 2> description{}; ///< the last two bytes, all that a decoder has to know
};

/// Reads the content of "SH"; absent if it is too short.
std::optional<MusepackStream> parseMusepackStream(std::span<const std::uint8_t> content);

} // namespace velmora
