#include "measure/formats/AiffDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::int64_t formHeaderBytes = 12; // "FORM", size, "AIFF" or "AIFC"
constexpr std::int64_t chunkHeaderBytes = 8; // name, size of what follows
constexpr std::int64_t soundHeaderBytes = 8; // of "SSND": offset of the first frame, block size

// "COMM": 0 channels, 2 frames, 6 bits a sample, 8 frames a second (80-bit extended), 18 compression
// (AIFF-C).
constexpr std::size_t framesAt = 2;
constexpr std::size_t bitsAt = 6;
constexpr std::size_t rateAt = 8;
constexpr std::size_t compressionAt = 18;

struct Common {
    std::int64_t channels = 0;
    std::int64_t frames = 0;
    double rate = 0;
    std::int64_t frameBytes = 0;  ///< without compression
    std::int64_t packetBytes = 0; ///< 0 for an unknown compression
    std::int64_t packetFrames = 1;
};

struct Sound {
    std::int64_t bytes = 0;
    bool isCutOff = false;
};

/// Packets of a compression, a channel; 0 bits stand for the sample's own.
struct Compression {
    std::string_view name;
    std::int64_t packetBytes; ///< 0: as many as a sample's bits need
    std::int64_t packetFrames;
};

constexpr auto compressions = std::to_array<Compression>({
    {"NONE", 0, 1}, {"sowt", 0, 1},    {"twos", 0, 1}, {"raw ", 0, 1},    {"in24", 3, 1},   {"in32", 4, 1},
    {"23ni", 4, 1}, {"42ni", 3, 1},    {"fl32", 4, 1}, {"FL32", 4, 1},    {"fl64", 8, 1},   {"FL64", 8, 1},
    {"ulaw", 1, 1}, {"ULAW", 1, 1},    {"alaw", 1, 1}, {"ALAW", 1, 1},    {"ima4", 34, 64}, {"MAC3", 2, 6},
    {"MAC6", 1, 6}, {"GSM ", 33, 160}, {"G722", 1, 2}, {"Qclp", 35, 160},
});

/// A number of 80 bits: sign and exponent (16), then the mantissa with its leading one (64).
double extended(Bytes bytes, std::size_t at) {
    constexpr int bias = 16383 + 63;
    const int exponent = be16(bytes, at) & 0x7FFF;
    return std::ldexp(static_cast<double>(be64(bytes, at + 2)), exponent - bias);
}

std::optional<Common> parseCommon(Bytes chunk) {
    if (chunk.size() < compressionAt) {
        return std::nullopt;
    }
    Common common{be16(chunk, 0), be32(chunk, framesAt), extended(chunk, rateAt)};
    common.frameBytes = (be16(chunk, bitsAt) + 7) / 8 * common.channels;
    if (common.channels == 0 || !(common.rate >= 1) || !std::isfinite(common.rate)) {
        return std::nullopt;
    }
    const bool isCompressed = chunk.size() >= compressionAt + 4;
    const auto* const row = std::ranges::find_if(compressions, [&](const Compression& compression) {
        return matches(isCompressed ? chunk.subspan(compressionAt) : Bytes(), compression.name);
    });
    if (row != compressions.end() && row->packetBytes > 0) {
        common.packetBytes = row->packetBytes * common.channels;
        common.packetFrames = row->packetFrames;
    } else if (row != compressions.end() || !isCompressed) {
        common.packetBytes = common.frameBytes;
    }
    return common;
}

std::optional<Timing> soundTiming(const Common& common, const Sound& sound) {
    const double stated = static_cast<double>(common.frames) / common.rate;
    if (common.packetBytes == 0) {
        // Frames of more bytes than without any compression are a count of packets.
        const bool isCredible = sound.bytes > 0 && sound.bytes <= common.frames * common.frameBytes;
        return isCredible && !sound.isCutOff ? std::optional(statedTiming(stated)) : std::nullopt;
    }
    const std::int64_t frames =
        std::max<std::int64_t>(0, sound.bytes / common.packetBytes * common.packetFrames);
    const double there = static_cast<double>(frames) / common.rate;
    if (common.packetFrames > 1) { // what is stated may be frames or packets, as the writer chose
        return Timing{.seconds = there,
                      .basis = Basis::sized,
                      .doubt = sound.isCutOff ? Doubt::beyondEnd : Doubt::none};
    }
    // A writer that cannot go back states 0 or too much.
    return withinFile(common.frames > 0 ? std::optional(stated) : std::nullopt,
                      {.seconds = there, .basis = Basis::sized});
}

} // namespace

std::optional<Timing> aiffDuration(GuardedReader& reader, std::int64_t start) {
    std::optional<Common> common;
    std::optional<Sound> sound;
    std::int64_t at = start + formHeaderBytes;
    while (!common || !sound) {
        const Bytes header = reader.header(at, chunkHeaderBytes);
        if (header.empty()) {
            break;
        }
        const bool isCommon = matches(header, "COMM");
        const bool isSound = matches(header, "SSND");
        const std::int64_t stated = be32(header, 4);
        at += chunkHeaderBytes;
        const std::int64_t size = std::min(stated, reader.size() - at);
        if (isCommon) {
            common = parseCommon(
                reader.header(at, static_cast<std::size_t>(std::min<std::int64_t>(size, compressionAt + 4))));
        } else if (isSound) {
            const std::int64_t rest = reader.size() - at;
            sound = Sound{(stated <= soundHeaderBytes ? rest : size) - soundHeaderBytes, stated > rest};
            if (const Bytes head = reader.header(at, soundHeaderBytes); !head.empty()) {
                sound->bytes -= be32(head, 0);
            }
        }
        at += stated + stated % 2;
    }
    return common ? soundTiming(*common, sound.value_or(Sound())) : std::nullopt;
}

} // namespace velmora
