#include "measure/formats/WavPackDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"
#include "measure/bytes/TailSearch.h"

#include <array>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::array<std::int32_t, 15> rates = {6'000,  8'000,  9'600,  11'025, 12'000,
                                                16'000, 22'050, 24'000, 32'000, 44'100,
                                                48'000, 64'000, 88'200, 96'000, 192'000};

/// A block: 0 "wvpk", 4 size of what follows this field, 8 version, 10 and 11 bits 32 to 39 of index and
/// total, 12 samples of the file, 16 index of the first sample, 20 samples of this block, 24 flags.
struct WavPackBlock {
    std::int64_t bytes = 0;
    std::optional<std::int64_t> total;
    std::int64_t index = 0;
    std::int64_t samples = 0;
    std::int32_t rate = 0;
};

constexpr std::size_t headerBytes = 32;

std::optional<WavPackBlock> parseBlock(Bytes header) {
    constexpr std::uint32_t unknownTotal = 0xFFFF'FFFF;
    constexpr std::uint32_t isOneBit = 0x8000'0000;
    constexpr int rateShift = 23;
    if (header.size() < headerBytes || !matches(header, "wvpk") || le16(header, 8) >> 8 != 4) {
        return std::nullopt;
    }
    const std::uint32_t flags = le32(header, 24);
    const std::size_t rate = flags >> rateShift & 0x0F;
    if ((flags & isOneBit) != 0 || rate >= rates.size()) {
        return std::nullopt;
    }
    WavPackBlock block;
    block.bytes = std::int64_t{le32(header, 4)} + 8;
    if (const std::uint32_t total = le32(header, 12); total != unknownTotal && total != 0) {
        block.total = (std::int64_t{header[11]} << 32) + total;
    }
    block.index = (std::int64_t{header[10]} << 32) + le32(header, 16);
    block.samples = le32(header, 20);
    block.rate = rates[rate];
    return block;
}

/// The sample behind the last whole block in `bytes`, which stand at `offset`; absent if no block begins in
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
    return withinFile(first->total ? std::optional(secondsOf(*first->total)) : std::nullopt,
                      {.seconds = secondsOf(end), .basis = Basis::counted});
}

} // namespace velmora
