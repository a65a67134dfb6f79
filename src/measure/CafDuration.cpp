#include "measure/CafDuration.h"

#include "measure/BigEndian.h"
#include "measure/Magic.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace velmora {

namespace {

using HeaderDuration::be32;
using HeaderDuration::be64;
using Bytes = std::span<const std::uint8_t>;

constexpr std::int64_t fileHeaderBytes = 8;   // "caff", version, flags
constexpr std::int64_t chunkHeaderBytes = 12; // name, size of what follows; data of size -1 reach to the end
constexpr std::int64_t editCountBytes = 4;    // at the start of "data"

/// "desc": 0 rate (64-bit floating point), 8 format, 12 flags, 16 bytes a packet, 20 frames a packet, 24
/// channels, 28 bits a channel. A packet of varying bytes or frames has 0 there.
struct Description {
    double rate = 0;
    std::int64_t packetBytes = 0;
    std::int64_t packetFrames = 0;
};

/// "pakt": 0 packets, 8 frames to be played, 16 frames before them, 20 frames behind them, 24 for each packet
/// its bytes, then its frames, each only if it varies, in groups of 7 bits.
struct PacketTable {
    std::int64_t at = 0;
    std::int64_t end = 0;
    std::int64_t packets = 0;
    std::int64_t validFrames = 0;
    std::int64_t primingFrames = 0;
};

struct Data {
    std::int64_t bytes = 0;
    bool isCutOff = false;
};

std::optional<Description> parseDescription(Bytes chunk) {
    if (chunk.size() < 32) {
        return std::nullopt;
    }
    const Description description{std::bit_cast<double>(be64(chunk, 0)), be32(chunk, 16), be32(chunk, 20)};
    return std::isfinite(description.rate) && description.rate >= 1 ? std::optional(description)
                                                                    : std::nullopt;
}

std::optional<PacketTable> parsePacketTable(Bytes chunk, std::int64_t at, std::int64_t end) {
    constexpr std::int64_t entriesAt = 24;
    if (chunk.size() < entriesAt) {
        return std::nullopt;
    }
    const auto packets = static_cast<std::int64_t>(be64(chunk, 0));
    const auto frames = static_cast<std::int64_t>(be64(chunk, 8));
    const auto priming = static_cast<std::int32_t>(be32(chunk, 16));
    if (packets < 0 || frames < 0 || priming < 0) {
        return std::nullopt;
    }
    return PacketTable{at + entriesAt, end, packets, frames, priming};
}

/// Reads the numbers of a packet table.
class TableCursor {
public:
    TableCursor(GuardedReader& reader, const PacketTable& table)
        : m_reader(reader)
        , m_at(table.at)
        , m_end(table.end) {}

    std::optional<std::int64_t> next() {
        std::int64_t value = 0;
        while (m_at < m_end && value < 1LL << 24) {
            const Bytes byte = m_reader.header(m_at++, 1);
            if (byte.empty()) {
                return std::nullopt;
            }
            value = value << 7 | (byte[0] & 0x7F);
            if ((byte[0] & 0x80) == 0) {
                return value;
            }
        }
        return std::nullopt;
    }

private:
    GuardedReader& m_reader;
    std::int64_t m_at;
    std::int64_t m_end;
};

/// Frames of the packets that `bytes` hold. Absent if the table cannot be read.
std::optional<std::int64_t> framesThere(GuardedReader& reader, const Description& description,
                                        const PacketTable& table, std::int64_t bytes) {
    TableCursor cursor(reader, table);
    std::int64_t frames = 0;
    for (std::int64_t packet = 0; packet < table.packets; ++packet) {
        const auto size = description.packetBytes > 0 ? description.packetBytes : cursor.next();
        const auto length = description.packetFrames > 0 ? description.packetFrames : cursor.next();
        if (!size || !length) {
            return std::nullopt;
        }
        bytes -= *size;
        if (bytes < 0) {
            break;
        }
        frames += *length;
    }
    return std::max<std::int64_t>(0, frames - table.primingFrames);
}

std::optional<std::int64_t> framesOf(GuardedReader& reader, const Description& description, const Data& data,
                                     const std::optional<PacketTable>& table) {
    const bool isConstant = description.packetBytes > 0 && description.packetFrames > 0;
    if (table && table->validFrames > 0 && !data.isCutOff) {
        return table->validFrames;
    }
    if (table && !isConstant) {
        return framesThere(reader, description, *table, data.bytes);
    }
    if (!isConstant) {
        return std::nullopt;
    }
    const std::int64_t packets = data.bytes / description.packetBytes;
    if (packets > 0 && description.packetFrames > (1LL << 62) / packets) {
        return std::nullopt;
    }
    const std::int64_t frames = packets * description.packetFrames - (table ? table->primingFrames : 0);
    return table && table->validFrames > 0 ? std::min(frames, table->validFrames) : frames;
}

} // namespace

std::optional<double> cafDuration(GuardedReader& reader, std::int64_t start) {
    std::optional<Description> description;
    std::optional<Data> data;
    std::optional<PacketTable> table;
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
            table = parsePacketTable(
                reader.header(at, static_cast<std::size_t>(std::min<std::int64_t>(size, 24))), at, at + size);
        } else if (isData) {
            data = Data{size - editCountBytes, stated > rest};
            const bool isConstant =
                description && description->packetBytes > 0 && description->packetFrames > 0;
            if (isConstant) {
                break; // a table behind the data of such packets has nothing to add
            }
        }
        at += size;
    }
    if (!description || !data) {
        return std::nullopt;
    }
    const auto frames = framesOf(reader, *description, *data, table);
    return frames ? std::optional(static_cast<double>(std::max<std::int64_t>(0, *frames)) / description->rate)
                  : std::nullopt;
}

} // namespace velmora
