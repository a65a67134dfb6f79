#include "measure/formats/MusepackDuration.h"

#include "measure/bytes/AudioTags.h"
#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"
#include "measure/formats/MusepackPacket.h"
#include "measure/libav/Libav.h"

#include <algorithm>
#include <array>
#include <vector>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Version 7 counts its frames in the header, which is taken as it is. Version 8 states its samples in a
// packet "SH" and ends with a packet "SE"; without that end, which may have been cut off, its audio packets
// are counted, and the one that is cut off is decoded to count the frames in it.
//
// Version 7 (trac.musepack.net, "SV7 specification"), words of 4 bytes, the lowest byte first:
//
//   offset  size  field
//        0     4  "MP+", version in the lowest four bits
//        4     4  frames
//        8     4  bits 16 and 17: sample rate
//       20     4  bit 31: whether the last frame's length is exact; bits 20 to 30: that length

constexpr std::int64_t decoderDelay = 481;

/// What the header of a file of version 7 states.
Timing version7Timing(Bytes header) {
    constexpr std::size_t framesAt = 4;
    constexpr std::size_t rateAt = 8;
    constexpr std::size_t lastAt = 20;
    constexpr int stereo = 2; // which this version always is
    const std::int64_t frames = le32(header, framesAt);
    const std::uint32_t last = le32(header, lastAt);
    const bool isExact = last >> 31 != 0;
    const std::int64_t lastSamples = last >> 20 & 0x7FF;
    const std::int64_t samples =
        frames * musepackFrameSamples - (isExact ? musepackFrameSamples - lastSamples : decoderDelay);
    const int rate = musepackRates[le32(header, rateAt) >> 16 & 0x03];
    Timing timing = statedTiming(static_cast<double>(std::max<std::int64_t>(0, samples)) / rate);
    timing.sampling = samplingOf(rate, stereo);
    return timing;
}

/// Whether the packet that ends every stream, "SE", stands in front of the tags.
bool hasItsEnd(GuardedReader& reader, std::int64_t start) {
    return matches(
        reader.header(findTrailingTags(reader, start) - minMusepackPacketBytes, minMusepackPacketBytes),
        "SE\x03");
}

/// Samples of the frames that are whole in the audio packet at `at`, whose end is missing.
std::int64_t samplesOfPart(GuardedReader& reader, std::int64_t at, const MusepackStream& header) {
    constexpr std::int64_t maxBytes = 1 << 20; // much more than a packet of music takes
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min(reader.size() - at, maxBytes)));
    bytes.resize(reader.search(at, bytes));
    const auto packet = parseMusepackPacket(bytes);
    const std::int64_t decoded =
        packet ? libav().decodedSamples("mpc8", header.description, packet->content) : 0;
    return std::max<std::int64_t>(0, decoded - musepackFrameSamples);
}

struct PacketSum {
    std::int64_t packets = 0; ///< whole ones
    std::int64_t samples = 0;
};

/// The audio packets, "AP", from the packet at `at` on. Absent if there are more packets than the reader's
/// bounds allow.
std::optional<PacketSum> packetsThere(GuardedReader& reader, std::int64_t at, const MusepackStream& header) {
    PacketSum sum;
    std::array<std::uint8_t, 12> bytes{};
    for (;;) {
        const Bytes head = Bytes(bytes).first(reader.search(at, bytes));
        const auto packet = parseMusepackPacket(head);
        const bool isAudio = matches(head, "AP");
        const bool isCutOff = packet && packet->bytes > reader.size() - at;
        if (isCutOff && isAudio) {
            sum.samples += samplesOfPart(reader, at, header);
        }
        if (!packet || isCutOff || matches(head, "SE")) {
            return reader.isOver() ? std::nullopt : std::optional(sum);
        }
        if (isAudio) {
            sum.samples += header.packetSamples;
            ++sum.packets;
        }
        at += packet->bytes;
    }
}

/// Takes `at` from the first packet to the end of the stream header. Others may come before it, but no audio.
std::optional<MusepackStream> takeStreamHeader(GuardedReader& reader, std::int64_t& at) {
    constexpr std::size_t maxHeaderBytes = 40;
    for (;;) {
        const Bytes head = reader.headerUpTo(at, maxHeaderBytes);
        const auto packet = parseMusepackPacket(head);
        if (!packet || matches(head, "AP")) {
            return std::nullopt;
        }
        at += packet->bytes;
        if (matches(head, "SH")) {
            return parseMusepackStream(packet->content);
        }
    }
}

std::optional<Timing> version8Timing(GuardedReader& reader, std::int64_t start) {
    std::int64_t at = start;
    const auto header = takeStreamHeader(reader, at);
    if (!header) {
        return std::nullopt;
    }
    const auto secondsOf = [&header](std::int64_t samples) {
        return static_cast<double>(std::max<std::int64_t>(0, samples - header->silence)) / header->rate;
    };
    const Sampling sampling = samplingOf(header->rate, header->channels);
    const auto stated = header->samples > 0 ? std::optional(secondsOf(header->samples)) : std::nullopt;
    if (stated && hasItsEnd(reader, start)) {
        return sampled(statedTiming(*stated), sampling);
    }
    const auto there = packetsThere(reader, at, *header);
    return there ? std::optional(withinFile(stated, {.seconds = secondsOf(there->samples),
                                                     .basis = Basis::counted,
                                                     .frames = there->packets,
                                                     .sampling = sampling}))
                 : std::nullopt;
}

} // namespace

std::optional<Timing> musepackDuration(GuardedReader& reader, std::int64_t start) {
    constexpr std::size_t version7Bytes = 24;
    constexpr std::int64_t magicBytes = 4;
    if (matches(reader.header(start, magicBytes), "MPCK")) {
        return version8Timing(reader, start + magicBytes);
    }
    const Bytes header = reader.header(start, version7Bytes);
    if (!matches(header, "MP+") || (header[3] & 0x0F) != 7) {
        return std::nullopt;
    }
    return version7Timing(header);
}

} // namespace velmora
