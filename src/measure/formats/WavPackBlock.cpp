#include "measure/formats/WavPackBlock.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"

#include <array>

namespace velmora {

namespace {

// Block (wavpack.com, "WavPack 4 & 5 Binary File / Block Format", section 2.0), the lowest byte of a number
// first:
//
//   offset  size  field
//        0     4  "wvpk"
//        4     4  size of the block less 8
//        8     2  version, 0x400 to 0x4FF
//       10     1  bits 32 to 39 of the index
//       11     1  bits 32 to 39 of the total
//       12     4  samples of the file; all ones: not known
//       16     4  index of the first sample
//       20     4  samples of this block
//       24     4  flags; bit 2: mono, bits 11 and 12: the first and the last block of these samples,
//                 bits 23 to 26: sample rate, bit 31: one-bit audio
//       28     4  checksum

constexpr std::size_t sizeAt = 4;
constexpr std::int64_t sizeFrom = 8; // the first byte that the size counts
constexpr std::size_t versionAt = 8;
constexpr int majorVersion = 4; // the higher byte
constexpr std::size_t indexHighAt = 10;
constexpr std::size_t totalHighAt = 11;
constexpr std::size_t totalAt = 12;
constexpr std::size_t indexAt = 16;
constexpr std::size_t samplesAt = 20;
constexpr std::size_t flagsAt = 24;

constexpr std::array<std::int32_t, 15> rates = {6'000,  8'000,  9'600,  11'025, 12'000,
                                                16'000, 22'050, 24'000, 32'000, 44'100,
                                                48'000, 64'000, 88'200, 96'000, 192'000};

} // namespace

std::optional<WavPackBlock> parseWavPackBlock(std::span<const std::uint8_t> header) {
    constexpr std::uint32_t unknownTotal = 0xFFFF'FFFF;
    constexpr std::uint32_t isMono = 0x4;
    constexpr std::uint32_t isAlone = 0x1800;
    constexpr std::uint32_t isOneBit = 0x8000'0000;
    constexpr int rateShift = 23;
    if (header.size() < wavPackHeaderBytes || !matches(header, "wvpk") ||
        le16(header, versionAt) >> 8 != majorVersion) {
        return std::nullopt;
    }
    const std::uint32_t flags = le32(header, flagsAt);
    const std::size_t rate = flags >> rateShift & 0x0F;
    if ((flags & isOneBit) != 0 || rate >= rates.size()) {
        return std::nullopt;
    }
    WavPackBlock block;
    block.bytes = std::int64_t{le32(header, sizeAt)} + sizeFrom;
    if (const std::uint32_t total = le32(header, totalAt); total != unknownTotal && total != 0) {
        block.total = (std::int64_t{header[totalHighAt]} << 32) + total;
    }
    block.index = (std::int64_t{header[indexHighAt]} << 32) + le32(header, indexAt);
    block.samples = le32(header, samplesAt);
    block.rate = rates[rate];
    block.channels = (flags & isAlone) != isAlone ? 0 : (flags & isMono) != 0 ? 1 : 2;
    block.flags = flags;
    return block;
}

} // namespace velmora
