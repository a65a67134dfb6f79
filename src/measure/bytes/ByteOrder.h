#pragma once

// Integers as audio formats store them, whatever the machine's own order: lowest byte first (le16 to le64) or
// highest byte first (be16 to be64).

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace velmora {

/// The `sizeof(Unsigned)` bytes of `bytes` at index `at`. Callers check lengths first: asking for bytes
/// beyond the end stops the program.
template <typename Unsigned>
std::span<const std::uint8_t> integerBytes(std::span<const std::uint8_t> bytes, std::size_t at) {
    if (at > bytes.size() || bytes.size() - at < sizeof(Unsigned)) {
        std::abort();
    }
    return bytes.subspan(at, sizeof(Unsigned));
}

/// The integer at index `at` of `bytes`, lowest byte first. All of it must lie within `bytes`.
template <typename Unsigned>
Unsigned littleEndian(std::span<const std::uint8_t> bytes, std::size_t at) {
    const auto stored = integerBytes<Unsigned>(bytes, at);
    std::uint64_t value = 0;
    for (std::size_t i = sizeof(Unsigned); i-- > 0;) {
        value = value << 8 | stored[i];
    }
    return static_cast<Unsigned>(value);
}

/// The same, highest byte first.
template <typename Unsigned>
Unsigned bigEndian(std::span<const std::uint8_t> bytes, std::size_t at) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : integerBytes<Unsigned>(bytes, at)) {
        value = value << 8 | byte;
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

inline std::uint16_t be16(std::span<const std::uint8_t> bytes, std::size_t at) {
    return bigEndian<std::uint16_t>(bytes, at);
}

inline std::uint32_t be32(std::span<const std::uint8_t> bytes, std::size_t at) {
    return bigEndian<std::uint32_t>(bytes, at);
}

inline std::uint64_t be64(std::span<const std::uint8_t> bytes, std::size_t at) {
    return bigEndian<std::uint64_t>(bytes, at);
}

} // namespace velmora
