#include "measure/formats/MatroskaElements.h"

#include "measure/bytes/ByteOrder.h"

#include <bit>

namespace velmora {

std::optional<EbmlElement> matroskaSegment(GuardedReader& reader, std::int64_t start) {
    const std::optional<EbmlElement> head = ebmlElementAt(reader, start);
    if (!head || !head->size || *head->size > reader.size()) {
        return std::nullopt;
    }
    const std::optional<EbmlElement> segment = ebmlElementAt(reader, head->content + *head->size);
    return segment && segment->id == Matroska::segmentId ? segment : std::nullopt;
}

std::optional<std::int64_t> matroskaBlockTime(GuardedReader& reader, const EbmlElement& block) {
    constexpr std::int64_t maxTrackBytes = 8;
    const auto track = reader.header(block.content, 1);
    const std::int64_t trackBytes = track.empty() ? 0 : std::countl_zero(track[0]) + 1;
    if (trackBytes == 0 || trackBytes > maxTrackBytes) {
        return std::nullopt;
    }
    const auto time = reader.header(block.content + trackBytes, 2);
    return time.empty() ? std::nullopt
                        : std::optional<std::int64_t>(static_cast<std::int16_t>(be16(time, 0)));
}

} // namespace velmora
