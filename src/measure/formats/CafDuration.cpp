#include "measure/formats/CafDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"
#include "measure/formats/CafPacketTable.h"
#include "measure/formats/FlacFrame.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::int64_t fileHeaderBytes = 8;   // "caff", version, flags
constexpr std::int64_t chunkHeaderBytes = 12; // name, size of what follows; data of size -1 reach to the end
constexpr std::int64_t editCountBytes = 4;    // at the start of "data"

/// "desc": 0 rate (64-bit floating point), 8 format, 12 flags, 16 bytes a packet, 20 frames a packet, 24
/// channels, 28 bits a channel.
struct Description {
    double rate = 0;
    std::uint32_t format = 0;
    CafPacketKind packet;

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
    if (chunk.size() < 32) {
        return std::nullopt;
    }
    const Description description{
        std::bit_cast<double>(be64(chunk, 0)), be32(chunk, 8), {be32(chunk, 16), be32(chunk, 20)}};
    return std::isfinite(description.rate) && description.rate >= 1 ? std::optional(description)
                                                                    : std::nullopt;
}

std::optional<FlacFrame> flacFrameAt(GuardedReader& reader, std::int64_t at, const FlacStreamInfo& stream) {
    const auto count = std::clamp<std::int64_t>(reader.size() - at, 0, longestFlacHeader);
    return parseFlacFrame(reader.header(at, static_cast<std::size_t>(count)), stream);
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

/// A packet of ALAC begins with 3 bits of element type, 4 of its number, 12 zeros, 1 that tells whether the
/// samples are counted, 3 others, then the count (32).
std::optional<std::int64_t> alacFrames(GuardedReader& reader, const CafPacketTable& table,
                                       std::int64_t packetFrames, std::int64_t lastAt) {
    constexpr std::uint32_t zeros = 0x01FF'E000;
    constexpr std::uint32_t isCounted = 0x0000'1000;
    const Bytes packet = reader.header(lastAt, 8);
    if (packet.empty() || (be32(packet, 0) & zeros) != 0 || (be32(packet, 0) & isCounted) == 0) {
        return std::nullopt;
    }
    const std::int64_t frames = be64(packet, 0) >> 9 & 0xFFFF'FFFF;
    return frames <= packetFrames ? std::optional((table.packets - 1) * packetFrames + frames) : std::nullopt;
}

/// What the packets themselves tell, where the table counts even the last one as full, as some writers do.
std::optional<std::int64_t> framesByLastPacket(GuardedReader& reader, const Description& description,
                                               const CafPacketTable& table, const Data& data) {
    constexpr std::uint32_t flac = 0x666C'6163; // the name's four letters
    constexpr std::uint32_t alac = 0x616C'6163;
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
    case flac:
        return flacFrames(reader, description, data.at, lastAt);
    case alac:
        return alacFrames(reader, table, packetFrames, lastAt);
    default:
        return std::nullopt;
    }
}

/// By the table alone. Absent if it cannot be read.
std::optional<Timing> tableTiming(GuardedReader& reader, const Description& description, const Data& data,
                                  const CafPacketTable& table) {
    const auto stated =
        table.validFrames > 0 ? std::optional(description.secondsOf(table.validFrames)) : std::nullopt;
    if (stated && !data.isCutOff()) {
        const auto frames = framesByLastPacket(reader, description, table, data);
        return frames ? Timing{.seconds = description.secondsOf(*frames),
                               .basis = Basis::counted,
                               .stated = stated,
                               .doubt = *frames == table.validFrames ? Doubt::none : Doubt::disagrees}
                      : statedTiming(*stated);
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
    const double stated = static_cast<double>(*data.statedBytes / packet.bytes) *
                          static_cast<double>(packet.frames) / description.rate;
    return sizedTiming(there, stated);
}

std::optional<Timing> timingOf(GuardedReader& reader, const Description& description, const Data& data,
                               const std::optional<CafPacketTable>& table) {
    const bool isConstant = description.packet.isConstant();
    if (table && ((table->validFrames > 0 && !data.isCutOff()) || !isConstant)) {
        return tableTiming(reader, description, data, *table);
    }
    return isConstant ? constantTiming(description, data, table) : std::nullopt;
}

} // namespace

std::optional<Timing> cafDuration(GuardedReader& reader, std::int64_t start) {
    std::optional<Description> description;
    std::optional<Data> data;
    std::optional<CafPacketTable> table;
    std::int64_t at = start + fileHeaderBytes;
    while (!table || !data) {
        const Bytes header = reader.header(at, chunkHeaderBytes);
        if (header.empty()) {
            break;
        }
        const bool isDescription = matches(header, "desc");
        const bool isTable = matches(header, "pakt");
        const bool isData = matches(header, "data");
        const auto stated = static_cast<std::int64_t>(be64(header, 4));
        at += chunkHeaderBytes;
        const std::int64_t rest = reader.size() - at;
        const bool isUnknown = stated < 0 || (isData && stated <= editCountBytes); // a pipe's
        const std::int64_t size = isUnknown ? rest : std::min(stated, rest);
        if (isDescription) {
            description = parseDescription(
                reader.header(at, static_cast<std::size_t>(std::min<std::int64_t>(size, 32))));
        } else if (isTable) {
            table = readCafPacketTable(reader, at, at + size);
        } else if (isData) {
            data = Data{at + editCountBytes, size - editCountBytes,
                        isUnknown ? std::nullopt : std::optional(stated - editCountBytes)};
            if (description && description->packet.isConstant()) {
                break; // a table behind the data of such packets has nothing to add
            }
        }
        at += size;
    }
    if (!description || !data) {
        return std::nullopt;
    }
    return timingOf(reader, *description, *data, table);
}

} // namespace velmora
