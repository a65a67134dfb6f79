#include "measure/formats/WavPackDuration.h"

#include "measure/bytes/TailSearch.h"
#include "measure/formats/WavPackBlock.h"

#include <algorithm>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// The first block states the samples of the file. The last block, found backwards from the end, tells where
// it stands, and so how many samples are really there.

/// The sample after the last whole block in `bytes`, which stand at `offset`; absent if no block begins in
/// them.
std::optional<std::int64_t> endOfLastBlock(Bytes bytes, std::int64_t offset, std::int64_t fileSize) {
    for (std::size_t at = bytes.size(); at-- > 0;) {
        if (bytes[at] != 'w') {
            continue;
        }
        const auto block = parseWavPackBlock(bytes.subspan(at));
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
    const auto first = parseWavPackBlock(reader.header(start, wavPackHeaderBytes));
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
    return sampled(first->index == 0 ? withinFile(stated, found) : foundTiming(found, stated),
                   samplingOf(first->rate, first->channels));
}

} // namespace velmora
