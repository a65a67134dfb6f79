#pragma once

// Frames of FLAC built from bytes (RFC 9639 section 9), whose checksums are right.

#include <cstdint>
#include <string>

namespace velmora::test {

/// The remainder of `bytes` divided by x^bits + `polynomial`.
std::uint64_t flacChecksum(const std::string& bytes, unsigned bits, std::uint64_t polynomial);

enum class FlacBlocks : std::uint8_t { ofFixedSize, ofAnySize };

// Codes of sample rates.
inline constexpr std::uint64_t ofStream = 0;
inline constexpr std::uint64_t of44k = 9;
inline constexpr std::uint64_t of48k = 10;

/// A frame of 54 bytes that says it holds `samples`; `number` is below 0x800.
std::string flacFrame(std::uint64_t number, std::uint64_t samples,
                      FlacBlocks blocks = FlacBlocks::ofFixedSize, std::uint64_t rate = ofStream);

} // namespace velmora::test
