#pragma once

// The headers of self-synchronising audio frames: MPEG audio (ISO/IEC 11172-3 section 2.4.1.3, 13818-3, and
// the unofficial "2.5" of low rates) and ADTS, which carries AAC (ISO/IEC 14496-3 section 1.A.2.2). Each
// frame says how long it is in bytes and in samples, so a stream is timed by hopping from one to the next.

#include "measure/bytes/Timing.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace velmora {

struct AudioFrame {
    std::int32_t bytes = 0;   ///< with its header, always positive
    std::int32_t samples = 0; ///< of one channel, always positive
    std::int32_t rate = 0;    ///< samples a second, always positive
    std::int32_t bitRate = 0; ///< bits a second; 0 where a frame does not say: free format, ADTS
    std::uint32_t kind = 0;   ///< equal for frames of one stream: version, layer, rate

    /// MPEG layer 3, the one that may begin with a frame of statements instead of sound.
    bool isLayer3 = false;

    /// ADTS of which `holdsOnlyFilling` may be true.
    bool mayBeFilling = false;
};

inline constexpr std::size_t frameHeaderBytes = 7; ///< the longer of the two, ADTS

/// The frame whose header `bytes` begin with. `freeBytes` is the length of a frame of "free format", which
/// does not state its own, without padding; 0 refuses such frames. Absent if `bytes` are no header.
std::optional<AudioFrame> parseFrame(std::span<const std::uint8_t> bytes, std::int32_t freeBytes = 0);

/// What the frame whose header `bytes` begin with says of its sound; nothing if they do not.
Sampling frameSampling(std::span<const std::uint8_t> bytes);

/// The samples a second that AAC calls by `index`; 0 if it calls none so.
std::int32_t aacRate(std::size_t index);

/// True if `frame`, a whole one of ADTS with one block, holds nothing but filling, as some encoders start
/// with: it decodes to no samples.
bool holdsOnlyFilling(std::span<const std::uint8_t> frame);

/// The `freeBytes` of the stream that `bytes`, a few frames, begin with, learnt from the distance of its
/// headers. Absent if it is no free format.
std::optional<std::int32_t> freeFormatBytes(std::span<const std::uint8_t> bytes);

} // namespace velmora
