#include "measure/formats/WavPackDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"
#include "measure/bytes/TailSearch.h"

#include <algorithm>
#include <array>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// The first block states the samples of the file. The last block, found backwards from the end, tells where
// it stands, and so how many samples are really there.
//
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
//       24     4  flags; bits 23 to 26: sample rate, bit 31: one-bit audio
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
constexpr std::size_t headerBytes = 32;

constexpr std::array<std::int32_t, 15> rates = {6'000,  8'000,  9'600,  11'025, 12'000,
                                                16'000, 22'050, 24'000, 32'000, 44'100,
                                                48'000, 64'000, 88'200, 96'000, 192'000};

struct WavPackBlock {
    std::int64_t bytes = 0;
    std::optional<std::int64_t> total; ///< samples of the file; absent if not known
    std::int64_t index = 0;
    std::int64_t samples = 0;
    std::int32_t rate = 0;
};

std::optional<WavPackBlock> parseBlock(Bytes header) {
    constexpr std::uint32_t unknownTotal = 0xFFFF'FFFF;
    constexpr std::uint32_t isOneBit = 0x8000'0000;
    constexpr int rateShift = 23;
    if (header.size() < headerBytes || !matches(header, "wvpk") ||
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
    return block;
}

/// The sample after the last whole block in `bytes`, which stand at `offset`; absent if no block begins in
/// them.
std::optional<std::int64_t> endOfLastBlock(Bytes bytes, std::int64_t offset, std::int64_t fileSize) {
    for (std::size_t at = bytes.size(); at-- > 0;) {
        const auto block = bytes[at] == 'w' ? parseBlock(bytes.subspan(at)) : std::nullopt;
        if (block && block->samples > 0) {
            const bool isWhole = offset + static_cast<std::int64_t>(at) + block->bytes <= fileSize;
            return block->index + (isWhole ? block->samples : 0);
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<Timing> wavPackDuration(GuardedReader& reader, std::int64_t start) {
    constexpr std::int64_t tailBytes = 64 << 10;
    const auto first = parseBlock(reader.header(start, headerBytes));
    if (!first) {
        return std::nullopt;
    }
    const auto find = [&](Bytes bytes, std::int64_t offset) {
        return endOfLastBlock(bytes, offset, reader.size());
    };
    const auto secondsOf = [&first](std::int64_t samples) {
        return static_cast<double>(samples) / first->rate;
    };
    const std::int64_t end = searchTail(reader, start, tailBytes, find).value_or(first->total.value_or(0));
    const auto stated = first->total ? std::optional(secondsOf(*first->total)) : std::nullopt;
    const Timing found{.seconds = secondsOf(std::max<std::int64_t>(end - first->index, 0)),
                       .basis = Basis::counted};
    // What was cut out of another file keeps the total of that.
    return first->index == 0 ? withinFile(stated, found) : foundTiming(found, stated);
}

} // namespace velmora
