#pragma once

// The packet table of a CAF file, "pakt" (Apple, "Core Audio Format Specification 1.0"): how many frames
// play, and how many bytes and frames each packet has where that varies.

#include "measure/bytes/GuardedReader.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// The kind of all packets, as "desc" states it. What varies from packet to packet is 0.
struct CafPacketKind {
    std::int64_t bytes = 0;
    std::int64_t frames = 0;

    bool isConstant() const { return bytes > 0 && frames > 0; }
};

struct CafPacketTable {
    std::int64_t entriesAt = 0; ///< for each packet its bytes, then its frames, each only if it varies
    std::int64_t end = 0;
    std::int64_t packets = 0;
    std::int64_t validFrames = 0;     ///< that play
    std::int64_t primingFrames = 0;   ///< to be left out before them
    std::int64_t remainderFrames = 0; ///< and after them
};

/// The table that fills the chunk from `at` to `end`. Absent if it is too short or states what cannot be.
std::optional<CafPacketTable> readCafPacketTable(GuardedReader& reader, std::int64_t at, std::int64_t end);

struct CafPacketSum {
    std::int64_t packets = 0;
    std::int64_t frames = 0; ///< without priming
};

/// Those packets that are whole within the first `bytes` of the data. Absent if the table cannot be read.
std::optional<CafPacketSum> sumWithin(GuardedReader& reader, const CafPacketTable& table,
                                      const CafPacketKind& kind, std::int64_t bytes);

/// Bytes of the last packet that is not empty, of packets of which nothing but the bytes varies. Absent if
/// there is none near the table's end.
std::optional<std::int64_t> lastPacketBytes(GuardedReader& reader, const CafPacketTable& table);

} // namespace velmora
