#include "measure/formats/DsdDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"

#include <algorithm>
#include <limits>

namespace velmora {

namespace {

/// How long `bytes` of samples of one bit play, `rate` a second and channel. Absent if there are no channels
/// or there is no rate.
std::optional<double> bitSeconds(std::int64_t bytes, std::int64_t channels, std::int64_t rate) {
    if (channels <= 0 || rate <= 0) {
        return std::nullopt;
    }
    const std::int64_t channelBytes = bytes / channels;
    return static_cast<double>(channelBytes) * 8 / static_cast<double>(rate);
}

/// `size` as far as the file reaches from `at`.
std::int64_t clamped(const GuardedReader& reader, std::int64_t at, std::uint64_t size) {
    const std::int64_t rest = std::max<std::int64_t>(0, reader.size() - at);
    return size < static_cast<std::uint64_t>(rest) ? static_cast<std::int64_t>(size) : rest;
}

} // namespace

std::optional<Timing> dsfDuration(GuardedReader& reader, std::int64_t start) {
    // "DSD " chunk: 28 bytes. "fmt ": 12 version, 16 format, 20 channel type, 24 channels, 28 rate, 32 bits,
    // 36 samples of a channel (8 bytes), 44 block size. "data": name, size with this header (8 bytes).
    constexpr std::size_t formatAt = 28;
    constexpr std::size_t sizeAt = 4;
    constexpr std::size_t channelsAt = formatAt + 24;
    constexpr std::size_t rateAt = formatAt + 28;
    constexpr std::size_t samplesAt = formatAt + 36;
    constexpr std::size_t headerBytes = formatAt + 52;
    constexpr std::int64_t dataHeaderBytes = 12;
    const auto header = reader.header(start, headerBytes);
    if (header.empty() || !matches(header.subspan(formatAt), "fmt ")) {
        return std::nullopt;
    }
    const std::int64_t channels = le32(header, channelsAt);
    const std::int64_t rate = le32(header, rateAt);
    const std::uint64_t samples = le64(header, samplesAt);
    const std::int64_t dataAt = start + static_cast<std::int64_t>(formatAt) +
                                clamped(reader, start, le64(header, formatAt + sizeAt)) + dataHeaderBytes;
    const auto there = bitSeconds(clamped(reader, dataAt, ~0ULL), channels, rate);
    if (!there) {
        return std::nullopt;
    }
    const double stated = static_cast<double>(samples) / static_cast<double>(rate);
    return withinFile(samples > 0 ? std::optional(stated) : std::nullopt,
                      {.seconds = *there, .basis = Basis::sized});
}

std::optional<Timing> dsdiffDuration(GuardedReader& reader, std::int64_t start) {
    // Chunks: name (4), size of what follows (8). "PROP" holds "SND " and further chunks: "FS  " with the
    // rate, "CHNL" with the channels. "DST " begins with "FRTE": frames (4), frames a second (2).
    constexpr std::int64_t fileHeaderBytes = 16;
    constexpr std::int64_t chunkHeaderBytes = 12;
    constexpr std::int64_t propertyTypeBytes = 4;
    std::int64_t channels = 0;
    std::int64_t rate = 0;
    std::int64_t at = start + fileHeaderBytes;
    for (;;) {
        const auto chunk = reader.header(at, chunkHeaderBytes);
        if (chunk.empty()) {
            return std::nullopt;
        }
        const std::uint64_t stated = be64(chunk, 4);
        const std::int64_t size = clamped(reader, at + chunkHeaderBytes, stated);
        if (matches(chunk, "DSD ")) {
            const auto there = bitSeconds(size, channels, rate);
            const auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
            return there ? std::optional(sizedTiming(
                               *there, bitSeconds(static_cast<std::int64_t>(std::min(stated, limit)),
                                                  channels, rate)))
                         : std::nullopt;
        }
        if (matches(chunk, "PROP")) {
            at += chunkHeaderBytes + propertyTypeBytes;
            continue;
        }
        if (matches(chunk, "DST ")) {
            at += chunkHeaderBytes;
            continue;
        }
        const bool isRate = matches(chunk, "FS  ");
        const bool isChannels = matches(chunk, "CHNL");
        const bool isFrames = matches(chunk, "FRTE");
        at += chunkHeaderBytes;
        if (const auto value = reader.header(at, 6); value.size() == 6) {
            rate = isRate ? be32(value, 0) : rate;
            channels = isChannels ? be16(value, 0) : channels;
            if (isFrames) {
                return statedTiming(static_cast<double>(be32(value, 0)) / std::max<int>(1, be16(value, 4)));
            }
        }
        at += size + size % 2;
    }
}

} // namespace velmora
