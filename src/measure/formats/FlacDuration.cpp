#include "measure/formats/FlacDuration.h"

#include "measure/bytes/AudioTags.h"
#include "measure/bytes/TailSearch.h"
#include "measure/formats/FlacFrame.h"
#include "measure/formats/FlacHead.h"

#include <algorithm>

namespace velmora {

namespace {

// STREAMINFO states the samples, but encoders that write into a pipe leave it empty, and a file that was cut
// out of another or cut off keeps the other's. So the length is what lies between the first frame and the
// last: the header of a frame tells the number of its first sample and how many it holds. The end of the file
// is searched backwards for the last one.

/// The sample after the last whole frame, numbered as the frames are; absent if none was found where one can
/// be expected.
std::optional<std::int64_t> endOfLastFrame(GuardedReader& reader, std::int64_t start, const FlacHead& head) {
    constexpr std::int64_t minTail = 16 << 10;
    constexpr std::int64_t maxTail = 64 << 10;
    constexpr std::int64_t tagsBytes = 256;
    const FlacStreamInfo& stream = head.stream;
    const std::int64_t tail = std::clamp(stream.frameBytes + tagsBytes, minTail, maxTail);
    const auto find = [&](std::span<const std::uint8_t> bytes,
                          std::int64_t offset) -> std::optional<std::int64_t> {
        const auto frame = lastFlacFrame(bytes, stream);
        if (!frame) {
            return offset == head.audioAt ? std::optional(head.firstSample) : std::nullopt;
        }
        const std::int64_t end = frame->firstSample + frame->samples;
        if (end == stream.samples) {
            return end;
        }
        const std::int64_t tagsAt = findTrailingTags(reader, start) - offset;
        const auto first = static_cast<std::int64_t>(frame->at);
        const auto length = std::clamp(tagsAt, first, static_cast<std::int64_t>(bytes.size())) - first;
        if (isWholeFlacFrame(bytes.subspan(frame->at, static_cast<std::size_t>(length)))) {
            return end;
        }
        const bool isAllThere = head.firstSample == 0 && stream.samples > 0 && end > stream.samples;
        return isAllThere ? stream.samples : frame->firstSample;
    };
    return searchTail(reader, head.audioAt, tail, find);
}

} // namespace

std::optional<Timing> flacDuration(GuardedReader& reader, std::int64_t start) {
    const auto head = readFlacHead(reader, start);
    if (!head) {
        return std::nullopt;
    }
    const auto secondsOf = [&head](std::int64_t samples) {
        return static_cast<double>(std::max<std::int64_t>(samples, 0)) / head->stream.rate;
    };
    const std::int64_t stated = head->stream.samples;
    const std::int64_t end = endOfLastFrame(reader, start, *head).value_or(stated);
    return foundTiming({.seconds = secondsOf(end - head->firstSample), .basis = Basis::counted},
                       stated > 0 ? std::optional(secondsOf(stated)) : std::nullopt);
}

} // namespace velmora
