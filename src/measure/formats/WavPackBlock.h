#pragma once

// The header of a WavPack block, of the stream versions 4 and 5.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace velmora {

inline constexpr std::size_t wavPackHeaderBytes = 32;

struct WavPackBlock {
    std::int64_t bytes = 0;
    std::optional<std::int64_t> total; ///< samples of the file; absent if not known
    std::int64_t index = 0;
    std::int64_t samples = 0;
    std::int32_t rate = 0;
    std::int32_t channels = 0; ///< 0 if further blocks hold more of them
    std::uint32_t flags = 0;
};

/// The header that `header` begins with. Absent if it is none, or of one-bit audio or a rate of its own.
std::optional<WavPackBlock> parseWavPackBlock(std::span<const std::uint8_t> header);

} // namespace velmora
