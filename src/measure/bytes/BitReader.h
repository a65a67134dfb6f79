#pragma once

// Numbers that are no whole bytes, the highest bit first.

#include <cstddef>
#include <cstdint>
#include <span>

namespace velmora {

class BitReader {
public:
    /// Over `bytes`, which must outlive the reader; after their end it reads zeros.
    explicit BitReader(std::span<const std::uint8_t> bytes)
        : m_bytes(bytes) {}

    /// The next `count` bits, at most 32.
    std::uint32_t take(int count) {
        std::uint32_t value = 0;
        for (; count > 0; --count, ++m_position) {
            const std::size_t byte = m_position / 8;
            const std::uint32_t bits = byte < m_bytes.size() ? m_bytes[byte] : 0U;
            value = value << 1 | (bits >> (7 - m_position % 8) & 1U);
        }
        return value;
    }

    void skip(std::size_t count) { m_position += count; }

    /// Goes on at the next whole byte.
    void align() { m_position = (m_position + 7) / 8 * 8; }

    /// In bits from the start.
    std::size_t position() const { return m_position; }

    bool isBeyondEnd() const { return m_position > 8 * m_bytes.size(); }

private:
    std::span<const std::uint8_t> m_bytes;
    std::size_t m_position = 0;
};

} // namespace velmora
