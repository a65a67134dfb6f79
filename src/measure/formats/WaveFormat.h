#pragma once

// The "fmt " chunk that WAV, its 64-bit relatives and Wave64 share, and how much time a number of bytes of
// such audio is.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>
#include <span>

namespace velmora {

struct WaveFormat {
    std::uint16_t tag = 0;
    std::int64_t channels = 0;
    std::int64_t rate = 0; ///< frames a second, positive
    std::int64_t byteRate = 0;
    std::int64_t blockBytes = 0;
    std::int64_t bits = 0;
    std::int64_t blockSamples = 0; ///< frames in a block of a compressed format; 0 if not stated
};

/// Absent if `chunk` is too short or states no rate.
std::optional<WaveFormat> parseWaveFormat(std::span<const std::uint8_t> chunk, bool isBigEndian);

/// The content of a "data" chunk, and what the file states of it.
struct WaveData {
    std::int64_t start = 0; ///< positions in the file
    std::int64_t end = 0;
    std::optional<std::int64_t> statedBytes;  ///< absent if the writer did not know
    std::optional<std::int64_t> statedFrames; ///< of a "fact" chunk
};

/// How long `data` play. `statedFrames` are taken for formats whose blocks may be filled up, if they fit.
/// Zero if nothing plays; absent for a format whose length its bytes do not tell.
std::optional<Timing> waveTiming(GuardedReader& reader, const WaveFormat& format, const WaveData& data);

} // namespace velmora
