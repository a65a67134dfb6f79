#pragma once

// Integers with their highest byte first, as most audio containers store them.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace velmora::HeaderDuration {

/// The integer at index `at` of `bytes`, all of which must lie within `bytes`, as for the little-endian ones.
template <typename Unsigned>
Unsigned bigEndian(std::span<const std::uint8_t> bytes, std::size_t at) {
    if (at > bytes.size() || bytes.size() - at < sizeof(Unsigned)) {
        std::abort();
    }
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes.subspan(at, sizeof(Unsigned))) {
        value = value << 8 | byte;
    }
    return static_cast<Unsigned>(value);
}

inline std::uint16_t be16(std::span<const std::uint8_t> bytes, std::size_t at) {
    return bigEndian<std::uint16_t>(bytes, at);
}

inline std::uint32_t be32(std::span<const std::uint8_t> bytes, std::size_t at) {
    return bigEndian<std::uint32_t>(bytes, at);
}

inline std::uint64_t be64(std::span<const std::uint8_t> bytes, std::size_t at) {
    return bigEndian<std::uint64_t>(bytes, at);
}

} // namespace velmora::HeaderDuration
