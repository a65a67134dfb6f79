#include "measure/formats/CafDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Chunks.h"
#include "measure/formats/CafPacketTable.h"
#include "measure/formats/FlacFrame.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// The chunks are walked until data and packet table were seen. Packets that all have the same bytes and
// frames are counted by the bytes of the data; for others the packet table states the frames that play. Some
// writers count the last packet as full: then that packet is asked.
//
// File (Apple, "Core Audio Format Specification 1.0", section "CAF File Overview"), the highest byte of a
// number first:
//
//   offset  size  field
//        0     4  "caff"
//        4     2  version
//        6     2  flags
//        8        chunks: name (4), size of the content (8, signed), content; data of size -1 reach to the
//        end
//
// "desc" (section "Audio Description Chunk"):
//
//   offset  size  field
//        0     8  frames a second (64-bit floating point)
//        8     4  format, four letters
//       12     4  flags
//       16     4  bytes of a packet; 0 if they vary
//       20     4  frames of a packet; 0 if they vary
//       24     4  channels
//       28     4  bits of a sample
//
// "data" (section "Audio Data Chunk"): 0 number of edits (4), 4 the packets.
//
// The head of an ALAC packet (Apple Lossless Audio Codec, ALACDecoder): element type (3 bits), its number
// (4), zeros (12), whether the frames are counted (1), shift and escape (3), frames (32, if counted).

constexpr std::int64_t fileHeaderBytes = 8;
constexpr ChunkLayout cafChunks{.sizeBytes = 8, .order = SizeOrder::highestByteFirst};
constexpr std::int64_t editCountBytes = 4;

constexpr std::size_t rateAt = 0;
constexpr std::size_t formatAt = 8;
constexpr std::size_t packetBytesAt = 16;
constexpr std::size_t packetFramesAt = 20;
constexpr std::size_t channelsAt = 24;
constexpr std::size_t descriptionBytes = 32;

constexpr std::uint32_t flacFormat = 0x666C'6163; // "flac"
constexpr std::uint32_t alacFormat = 0x616C'6163; // "alac"

constexpr std::size_t alacHeadBytes = 8;
constexpr std::uint32_t alacZeros = 0x01FF'E000;
constexpr std::uint32_t alacIsCounted = 0x0000'1000;
constexpr int alacBitsAfterFrames = 9; // of the 64 bits of the head

/// What "desc" states.
struct Description {
    double rate = 0;
    std::uint32_t format = 0;
    CafPacketKind packet;
    std::int64_t channels = 0;

    double secondsOf(std::int64_t frames) const {
        return static_cast<double>(std::max<std::int64_t>(0, frames)) / rate;
    }
};

struct Data {
    std::int64_t at = 0;
    std::int64_t bytes = 0;                  ///< that are there
    std::optional<std::int64_t> statedBytes; ///< absent if the writer did not know

    bool isCutOff() const { return statedBytes && *statedBytes > bytes; }
};

std::optional<Description> parseDescription(Bytes chunk) {
    if (chunk.size() < descriptionBytes) {
        return std::nullopt;
    }
    const Description description{std::bit_cast<double>(be64(chunk, rateAt)),
                                  be32(chunk, formatAt),
                                  {be32(chunk, packetBytesAt), be32(chunk, packetFramesAt)},
                                  be32(chunk, channelsAt)};
    return std::isfinite(description.rate) && description.rate >= 1 ? std::optional(description)
                                                                    : std::nullopt;
}

std::optional<FlacFrame> flacFrameAt(GuardedReader& reader, std::int64_t at, const FlacStreamInfo& stream) {
    const auto frame = parseFlacFrame(reader.headerUpTo(at, maxFlacHeaderBytes), stream);
    return frame && frame->rate == stream.rate ? frame : std::nullopt;
}

/// FLAC numbers its frames.
std::optional<std::int64_t> flacFrames(GuardedReader& reader, const Description& description,
                                       std::int64_t firstAt, std::int64_t lastAt) {
    FlacStreamInfo stream{.rate = static_cast<std::int32_t>(std::min(description.rate, 1e9))};
    const auto first = flacFrameAt(reader, firstAt, stream);
    if (!first) {
        return std::nullopt;
    }
    stream.blockSamples = static_cast<std::int32_t>(first->samples);
    const auto last = flacFrameAt(reader, lastAt, stream);
    return last ? std::optional(last->firstSample + last->samples) : std::nullopt;
}

/// The last packet of ALAC counts its frames; all others are full.
std::optional<std::int64_t> alacFrames(GuardedReader& reader, const CafPacketTable& table,
                                       std::int64_t packetFrames, std::int64_t lastAt) {
    const Bytes head = reader.header(lastAt, alacHeadBytes);
    if (head.empty() || (be32(head, 0) & alacZeros) != 0 || (be32(head, 0) & alacIsCounted) == 0) {
        return std::nullopt;
    }
    const std::int64_t frames = be64(head, 0) >> alacBitsAfterFrames & 0xFFFF'FFFF;
    return frames <= packetFrames ? std::optional((table.packets - 1) * packetFrames + frames) : std::nullopt;
}

/// What the packets themselves tell, where the table counts even the last one as full, as some writers do.
std::optional<std::int64_t> framesByLastPacket(GuardedReader& reader, const Description& description,
                                               const CafPacketTable& table, const Data& data) {
    const std::int64_t packetFrames = description.packet.frames;
    const bool isRoundedUp = table.primingFrames == 0 && table.remainderFrames == 0 && packetFrames > 0 &&
                             table.validFrames % packetFrames == 0 &&
                             table.validFrames / packetFrames == table.packets;
    const auto lastBytes = isRoundedUp ? lastPacketBytes(reader, table) : std::nullopt;
    if (!lastBytes || *lastBytes > data.bytes) {
        return std::nullopt;
    }
    const std::int64_t lastAt = data.at + data.bytes - *lastBytes;
    switch (description.format) {
    case flacFormat:
        return flacFrames(reader, description, data.at, lastAt);
    case alacFormat:
        return alacFrames(reader, table, packetFrames, lastAt);
    default:
        return std::nullopt;
    }
}

/// Whether the packets that the table lists can hold the frames that it states, and data and table so many
/// packets.
bool isCredible(const CafPacketKind& packet, const Data& data, const CafPacketTable& table) {
    const std::int64_t entries = packet.isConstant() ? table.packets : table.end - table.entriesAt;
    const std::int64_t packetBytes = std::max<std::int64_t>(packet.bytes, 1);
    const std::int64_t packets = std::min({table.packets, entries, data.bytes / packetBytes});
    return packet.frames == 0 || table.validFrames / packet.frames <= packets;
}

/// By the table alone: by the frames that it states, or else by its packets. Absent if it cannot be read.
std::optional<Timing> tableTiming(GuardedReader& reader, const Description& description, const Data& data,
                                  const CafPacketTable& table, bool isStated) {
    const auto stated =
        table.validFrames > 0 ? std::optional(description.secondsOf(table.validFrames)) : std::nullopt;
    if (isStated) {
        const auto frames = framesByLastPacket(reader, description, table, data);
        return frames ? Timing{.seconds = description.secondsOf(*frames),
                               .basis = Basis::counted,
                               .stated = stated,
                               .doubt = *frames == table.validFrames ? Doubt::none : Doubt::disagrees}
                      : statedTiming(description.secondsOf(table.validFrames));
    }
    const auto sum = sumWithin(reader, table, description.packet, data.bytes);
    return sum ? std::optional(Timing{.seconds = description.secondsOf(sum->frames),
                                      .basis = Basis::counted,
                                      .stated = stated,
                                      .doubt = stated ? Doubt::beyondEnd : Doubt::unfinished,
                                      .frames = sum->packets})
               : std::nullopt;
}

/// By the bytes of packets that are all alike, less what the table, if there is one, leaves out. Absent if
/// the frames are more than can be.
std::optional<Timing> constantTiming(const Description& description, const Data& data,
                                     const std::optional<CafPacketTable>& table) {
    const CafPacketKind& packet = description.packet;
    const std::int64_t packets = data.bytes / packet.bytes;
    if (packets > 0 && packet.frames > (1LL << 62) / packets) {
        return std::nullopt;
    }
    const double there = description.secondsOf(packets * packet.frames - (table ? table->primingFrames : 0));
    if (table && table->validFrames > 0) {
        return withinFile(description.secondsOf(table->validFrames),
                          {.seconds = there, .basis = Basis::sized});
    }
    if (!data.isCutOff()) {
        return sizedTiming(there, data.statedBytes ? std::optional(there) : std::nullopt);
    }
    const std::int64_t statedPackets = *data.statedBytes / packet.bytes;
    const double stated =
        static_cast<double>(statedPackets) * static_cast<double>(packet.frames) / description.rate;
    return sizedTiming(there, stated);
}

std::optional<Timing> timingOf(GuardedReader& reader, const Description& description, const Data& data,
                               const std::optional<CafPacketTable>& table) {
    const bool isConstant = description.packet.isConstant();
    const bool isStated =
        table && table->validFrames > 0 && !data.isCutOff() && isCredible(description.packet, data, *table);
    if (table && (isStated || !isConstant)) {
        return tableTiming(reader, description, data, *table, isStated);
    }
    return isConstant ? constantTiming(description, data, table) : std::nullopt;
}

/// The packets in `chunk`, which is called "data". A writer that cannot go back states no size.
Data dataOf(GuardedReader& reader, const Chunk& chunk) {
    const auto stated = static_cast<std::int64_t>(chunk.stated);
    const bool isUnknown = stated <= editCountBytes;
    const std::int64_t size = isUnknown ? reader.size() - chunk.content : chunk.size;
    return {chunk.content + editCountBytes, size - editCountBytes,
            isUnknown ? std::nullopt : std::optional(stated - editCountBytes)};
}

} // namespace

std::optional<Timing> cafDuration(GuardedReader& reader, std::int64_t start) {
    std::optional<Description> description;
    std::optional<Data> data;
    std::optional<CafPacketTable> table;
    std::int64_t at = start + fileHeaderBytes;
    while (!table || !data) {
        const auto chunk = chunkAt(reader, cafChunks, at);
        if (!chunk) {
            break;
        }
        at = chunk->next;
        if (chunk->name == "desc") {
            description = parseDescription(contentOf(reader, *chunk, descriptionBytes));
        } else if (chunk->name == "pakt") {
            table = readCafPacketTable(reader, chunk->content, chunk->end());
        } else if (chunk->name == "data") {
            data = dataOf(reader, *chunk);
            if (description && description->packet.isConstant()) {
                break; // a table after the data of such packets has nothing to add
            }
            at = data->at + data->bytes;
        }
    }
    if (!description || !data) {
        return std::nullopt;
    }
    return sampled(timingOf(reader, *description, *data, table),
                   samplingOf(description->rate, description->channels));
}

} // namespace velmora
