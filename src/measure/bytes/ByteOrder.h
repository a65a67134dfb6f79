#pragma once

// Integers as Ogg and ASF store them: lowest byte first, whatever the machine's own order.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace velmora::HeaderDuration {

/// The integer at index `at` of `bytes`. All of it must lie within `bytes`: callers check lengths first, and
/// reading beyond the end stops the program.
template <typename Unsigned>
Unsigned littleEndian(std::span<const std::uint8_t> bytes, std::size_t at) {
    if (at > bytes.size() || bytes.size() - at < sizeof(Unsigned)) {
        std::abort();
    }
    std::uint64_t value = 0;
    for (std::size_t i = sizeof(Unsigned); i-- > 0;) {
        value = value << 8 | bytes[at + i];
    }
    return static_cast<Unsigned>(value);
}

inline std::uint16_t le16(std::span<const std::uint8_t> bytes, std::size_t at) {
    return littleEndian<std::uint16_t>(bytes, at);
}

inline std::uint32_t le32(std::span<const std::uint8_t> bytes, std::size_t at) {
    return littleEndian<std::uint32_t>(bytes, at);
}

inline std::uint64_t le64(std::span<const std::uint8_t> bytes, std::size_t at) {
    return littleEndian<std::uint64_t>(bytes, at);
}

} // namespace velmora::HeaderDuration
