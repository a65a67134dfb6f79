#include "measure/formats/CafPacketTable.h"

#include "measure/bytes/ByteOrder.h"

#include <algorithm>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// The entries are read from first to last to count the packets that are left of a cut-off file, or backwards
// from the end to find the size of the last packet.
//
// "pakt" (Apple, "Core Audio Format Specification 1.0", section "Packet Table Chunk"), the highest byte of a
// number first:
//
//   offset  size  field
//        0     8  packets
//        8     8  frames that play
//       16     4  frames to be left out before them
//       20     4  frames to be left out after them
//       24        for each packet its bytes, if they vary, then its frames, if they vary
//
// The numbers of the packets stand in groups of 7 bits, the highest first; every byte of one but its last has
// the highest bit set.

constexpr std::size_t packetsAt = 0;
constexpr std::size_t validFramesAt = 8;
constexpr std::size_t primingFramesAt = 16;
constexpr std::size_t remainderFramesAt = 20;
constexpr std::int64_t headBytes = 24;

constexpr std::uint8_t continues = 0x80;
constexpr std::int64_t maxNumberBytes = 4; // 256 MB, more than any packet has

/// Reads the numbers from first to last.
class EntryCursor {
public:
    EntryCursor(GuardedReader& reader, const CafPacketTable& table)
        : m_reader(reader)
        , m_at(table.entriesAt)
        , m_end(table.end) {}

    std::optional<std::int64_t> next() {
        std::int64_t value = 0;
        for (std::int64_t i = 0; i < maxNumberBytes && m_at < m_end; ++i) {
            const Bytes byte = m_reader.header(m_at++, 1);
            if (byte.empty()) {
                return std::nullopt;
            }
            value = value << 7 | (byte[0] & ~continues);
            if ((byte[0] & continues) == 0) {
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

} // namespace

std::optional<CafPacketTable> readCafPacketTable(GuardedReader& reader, std::int64_t at, std::int64_t end) {
    const Bytes head = reader.header(at, headBytes);
    if (head.empty() || end - at < headBytes) {
        return std::nullopt;
    }
    const auto packets = static_cast<std::int64_t>(be64(head, packetsAt));
    const auto frames = static_cast<std::int64_t>(be64(head, validFramesAt));
    const auto priming = static_cast<std::int32_t>(be32(head, primingFramesAt));
    const auto remainder = static_cast<std::int32_t>(be32(head, remainderFramesAt));
    if (packets < 0 || frames < 0 || priming < 0) {
        return std::nullopt;
    }
    return CafPacketTable{at + headBytes, end, packets, frames, priming, remainder};
}

std::optional<CafPacketSum> sumWithin(GuardedReader& reader, const CafPacketTable& table,
                                      const CafPacketKind& kind, std::int64_t bytes) {
    EntryCursor cursor(reader, table);
    CafPacketSum sum;
    while (sum.packets < table.packets) {
        const auto size = kind.bytes > 0 ? kind.bytes : cursor.next();
        const auto length = kind.frames > 0 ? kind.frames : cursor.next();
        if (!size || !length) {
            return std::nullopt;
        }
        bytes -= *size;
        if (bytes < 0) {
            break;
        }
        sum.frames += *length;
        ++sum.packets;
    }
    sum.frames = std::max<std::int64_t>(0, sum.frames - table.primingFrames);
    return sum;
}

std::optional<std::int64_t> lastPacketBytes(GuardedReader& reader, const CafPacketTable& table) {
    constexpr std::int64_t searchedBytes = 16;
    const std::int64_t from = std::max(table.entriesAt, table.end - searchedBytes);
    const Bytes entries = reader.headerUpTo(from, searchedBytes, table.end);
    std::int64_t value = 0;
    int shift = 0;
    for (std::size_t at = entries.size(); at-- > 0;) {
        const bool isEndOfNumber = (entries[at] & continues) == 0;
        if (isEndOfNumber && value > 0) {
            return value;
        }
        shift = isEndOfNumber ? 0 : shift + 7;
        if (shift >= 7 * maxNumberBytes) {
            return std::nullopt;
        }
        value |= static_cast<std::int64_t>(entries[at] & ~continues) << shift;
    }
    return value > 0 && from == table.entriesAt ? std::optional(value) : std::nullopt;
}

} // namespace velmora
