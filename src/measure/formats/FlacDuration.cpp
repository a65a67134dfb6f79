#include "measure/formats/FlacDuration.h"

#include "measure/bytes/AudioTags.h"
#include "measure/bytes/TailSearch.h"
#include "measure/formats/FlacClock.h"
#include "measure/formats/FlacFrame.h"
#include "measure/formats/FlacHead.h"

#include <algorithm>

namespace velmora {

namespace {

// STREAMINFO states the samples, but encoders that write into a pipe leave it empty, and a file that was cut
// out of another or cut off keeps the other's. So the length is what lies between the first frame and the
// last: the header of a frame tells the number of its first sample and how many it holds. The end of the file
// is searched backwards for the last one. Where the two do not agree with the rest, the clock is read in
// between (FlacClock.h).

struct Tail {
    std::int64_t end = 0;    ///< the sample after the last whole frame, numbered as the frames are
    std::int64_t lastAt = 0; ///< the header of the last frame
    std::optional<FlacFrame> lastFrame = {}; ///< absent if there is none
    bool isWhole = false;                    ///< that frame
};

/// Absent if no frame was found where one can be expected.
std::optional<Tail> readTail(GuardedReader& reader, std::int64_t start, const FlacHead& head) {
    constexpr std::int64_t minTail = 16 << 10;
    constexpr std::int64_t maxTail = 64 << 10;
    constexpr std::int64_t tagsBytes = 256;
    const FlacStreamInfo& stream = head.stream;
    const std::int64_t tailBytes = std::clamp(stream.frameBytes + tagsBytes, minTail, maxTail);
    const auto find = [&](std::span<const std::uint8_t> bytes, std::int64_t offset) -> std::optional<Tail> {
        const auto frame = lastFlacFrame(bytes, stream);
        if (!frame) {
            return offset == head.audioAt ? std::optional(Tail{.end = head.firstSample}) : std::nullopt;
        }
        const auto first = static_cast<std::int64_t>(frame->at);
        const std::int64_t end = frame->firstSample + frame->samples;
        Tail tail{.end = end, .lastAt = offset + first, .lastFrame = frame, .isWhole = true};
        if (end == stream.samples) {
            return tail;
        }
        const std::int64_t tagsAt = findTrailingTags(reader, start) - offset;
        const auto length = std::clamp(tagsAt, first, static_cast<std::int64_t>(bytes.size())) - first;
        tail.isWhole = isWholeFlacFrame(bytes.subspan(frame->at, static_cast<std::size_t>(length)));
        if (!tail.isWhole) {
            const bool isAllThere = head.firstSample == 0 && stream.samples > 0 && end > stream.samples;
            tail.end = isAllThere ? stream.samples : frame->firstSample;
        }
        return tail;
    };
    return searchTail(reader, head.audioAt, tailBytes, find);
}

/// Whether one clock from the first frame to the last cannot be, or not what the header states.
bool isClockDoubtful(const FlacHead& head, const Tail& tail) {
    const FlacStreamInfo& stream = head.stream;
    if (!tail.lastFrame) {
        return false;
    }
    if (tail.lastFrame->rate != stream.rate || tail.end < head.firstSample) {
        return true;
    }
    const bool isOther =
        tail.end < stream.samples || (stream.samples > 0 && tail.end > stream.samples && tail.isWhole);
    // Between the first frame and the last there are more bytes than so many of the largest frames take.
    const bool isTooLarge = stream.frameBytes > 0 && stream.blockSamples > 0 &&
                            (tail.lastAt - head.audioAt) / stream.frameBytes >
                                (tail.end - head.firstSample) / stream.blockSamples;
    return isTooLarge || (isOther && head.firstSample == 0);
}

Timing timingOf(GuardedReader& reader, const FlacHead& head, const Tail& tail) {
    const auto secondsOf = [&head](std::int64_t samples) {
        return static_cast<double>(std::max<std::int64_t>(samples, 0)) / head.stream.rate;
    };
    const std::int64_t stated = head.stream.samples;
    std::optional<double> seconds;
    if (isClockDoubtful(head, tail)) {
        seconds = flacClockSeconds(reader, head.stream, {head.audioAt, tail.lastAt, tail.isWhole});
    }
    return foundTiming({.seconds = seconds.value_or(secondsOf(tail.end - head.firstSample)),
                        .basis = Basis::counted,
                        .sampling = samplingOf(head.stream.rate, head.stream.channels)},
                       stated > 0 ? std::optional(secondsOf(stated)) : std::nullopt);
}

} // namespace

std::optional<Timing> flacDuration(GuardedReader& reader, std::int64_t start) {
    const auto head = readFlacHead(reader, start);
    if (!head) {
        return std::nullopt;
    }
    const auto tail = readTail(reader, start, *head);
    return timingOf(reader, *head, tail.value_or(Tail{.end = head->stream.samples}));
}

std::optional<Timing> bareFlacDuration(GuardedReader& reader, std::int64_t start) {
    constexpr std::int64_t minFrameBytes = 10; // one sample value for all
    constexpr std::int64_t maxBlockSamples = 1 << 16;
    const auto head = readBareFlacHead(reader, start);
    const auto tail = head ? readTail(reader, start, *head) : std::nullopt;
    if (!tail || !tail->lastFrame || !(tail->isWhole || tail->lastFrame->firstSample > head->firstSample)) {
        return std::nullopt;
    }
    const Timing timing = timingOf(reader, *head, *tail);
    const std::int64_t maxFrames = (reader.size() - start) / minFrameBytes;
    const double maxSeconds = static_cast<double>(maxFrames * maxBlockSamples) / head->stream.rate;
    return timing.seconds <= maxSeconds ? std::optional(timing) : std::nullopt;
}

} // namespace velmora
