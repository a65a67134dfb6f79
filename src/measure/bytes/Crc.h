#pragma once

// Cyclic checksums at about the speed of memory: sixteen bytes a step, each looked up in a table of its own
// ("slicing"). Several formats protect their frames this way and differ in width, polynomial and order of
// bits.
//
//   Crc16::after(0, frame) == 0     a whole FLAC frame: it ends with the checksum of what is before
//   OggCrc32::after(0, page)        of an Ogg page whose field for it is zero
//   Crc32::of(bytes)                of zlib, Matroska and Musepack

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace velmora {

enum class BitOrder : std::uint8_t { highestFirst, lowestFirst };

/// Remainders of x^bits + `polynomial`, which is written in the same order of bits as `order` has it.
template <typename Sum, Sum polynomial, BitOrder order>
class Crc {
public:
    /// The sum of the bytes whose sum is `sum`, followed by `bytes`.
    static Sum after(Sum sum, std::span<const std::uint8_t> bytes) {
        while (bytes.size() >= step) {
            Sum next = 0;
            for (std::size_t i = 0; i < step; ++i) {
                const std::uint8_t byte = i < sizeof(Sum) ? bytes[i] ^ leading(sum, i) : bytes[i];
                next = static_cast<Sum>(next ^ tables[step - 1 - i][byte]);
            }
            sum = next;
            bytes = bytes.subspan(step);
        }
        for (const std::uint8_t byte : bytes) {
            sum = afterByte(sum, byte);
        }
        return sum;
    }

    static Sum afterByte(Sum sum, std::uint8_t byte) {
        return static_cast<Sum>(shifted(sum) ^ tables[0][byte ^ leading(sum, 0)]);
    }

private:
    static constexpr std::size_t step = 16;
    static constexpr int bits = 8 * static_cast<int>(sizeof(Sum));
    static constexpr bool isHighestFirst = order == BitOrder::highestFirst;

    using Tables = std::array<std::array<Sum, 256>, step>;

    /// The byte of `sum` that meets the byte number `i` of what follows.
    static constexpr std::uint8_t leading(Sum sum, std::size_t i) {
        const int shift = 8 * static_cast<int>(i);
        return static_cast<std::uint8_t>(sum >> (isHighestFirst ? bits - 8 - shift : shift));
    }

    /// `sum` without the byte that is met first.
    static constexpr Sum shifted(Sum sum) {
        return static_cast<Sum>(isHighestFirst ? std::uint64_t{sum} << 8 : std::uint64_t{sum} >> 8);
    }

    static constexpr Sum afterBit(Sum sum) {
        const Sum top = isHighestFirst ? static_cast<Sum>(Sum{1} << (bits - 1)) : Sum{1};
        const Sum moved =
            static_cast<Sum>(isHighestFirst ? std::uint64_t{sum} << 1 : std::uint64_t{sum} >> 1);
        return static_cast<Sum>(moved ^ ((sum & top) != 0 ? polynomial : Sum{0}));
    }

    /// Table 0 has the sums of single bytes, each further one those of the same followed by one zero more.
    static constexpr Tables makeTables() {
        Tables made{};
        for (std::size_t byte = 0; byte < 256; ++byte) {
            Sum sum = static_cast<Sum>(isHighestFirst ? byte << (bits - 8) : byte);
            for (int bit = 0; bit < 8; ++bit) {
                sum = afterBit(sum);
            }
            made[0][byte] = sum;
        }
        for (std::size_t zeros = 1; zeros < step; ++zeros) {
            for (std::size_t byte = 0; byte < 256; ++byte) {
                const Sum before = made[zeros - 1][byte];
                made[zeros][byte] = static_cast<Sum>(shifted(before) ^ made[0][leading(before, 0)]);
            }
        }
        return made;
    }

    static constexpr Tables tables = makeTables();
};

/// RFC 9639 section 9.3: x^16 + x^15 + x^2 + 1; of MPEG audio, too (ISO/IEC 11172-3 section 2.4.3.1).
using Crc16 = Crc<std::uint16_t, 0x8005, BitOrder::highestFirst>;

/// RFC 3533 section 6: no bit turned, neither at the start nor at the end.
using OggCrc32 = Crc<std::uint32_t, 0x04C1'1DB7, BitOrder::highestFirst>;

/// ISO 3309, as zlib has it: all bits turned at the start and at the end.
class Crc32 {
public:
    void take(std::span<const std::uint8_t> bytes) { m_sum = Reflected::after(m_sum, bytes); }

    std::uint32_t value() const { return ~m_sum; }

    static std::uint32_t of(std::span<const std::uint8_t> bytes) {
        Crc32 sum;
        sum.take(bytes);
        return sum.value();
    }

private:
    using Reflected = Crc<std::uint32_t, 0xEDB8'8320, BitOrder::lowestFirst>;

    std::uint32_t m_sum = ~std::uint32_t{0};
};

} // namespace velmora
