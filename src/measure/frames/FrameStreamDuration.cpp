#include "measure/frames/FrameStreamDuration.h"

#include "measure/frames/FrameHopper.h"
#include "measure/frames/FrameStatement.h"

namespace velmora {

namespace {

// A first frame of layer 3 may state the frames that follow (XingHeader.h). Its statement is taken if the
// size that it states is about that of the stream, and can hold the frames; then no other frame is read.
// Otherwise all frames are counted, and the encoder's own samples at both ends are taken off.

/// As many frames in a row are sound, however little of a file they are.
constexpr std::int64_t longRun = 100;

std::optional<Timing> positive(const Timing& timing) {
    return timing.seconds > 0 ? std::optional(timing) : std::nullopt;
}

/// Times a stream of `size` bytes; `sumOf()` counts its frames, which is seldom needed.
template <typename SumOf>
std::optional<Timing> timingOf(const std::optional<FrameStatement>& statement, std::int64_t size,
                               SumOf sumOf) {
    if (statement && statement->isBelieved(size)) {
        return sampled(positive(statedTiming(*statement->seconds())), statement->sampling);
    }
    const FrameSum sum = sumOf();
    return sampled(
        positive(statement ? countedTiming(sum, *statement, size)
                           : Timing{.seconds = sum.seconds, .basis = Basis::counted, .frames = sum.frames}),
        statement ? statement->sampling : sum.sampling);
}

} // namespace

std::optional<Timing> frameStreamDuration(GuardedReader& reader, std::int64_t start, std::int64_t end) {
    const std::optional<FrameStatement> statement = frameStatementAt(reader, start, end);
    if (!statement && !isFrameAt(reader, start, end)) {
        return std::nullopt;
    }
    return timingOf(statement, end - start, [&] { return sumFrames(reader, start, end); });
}

std::optional<Timing> searchedFrameDuration(GuardedReader& reader, std::int64_t start, std::int64_t end) {
    const std::optional<std::int64_t> first = findFrame(reader, start, end);
    if (!first) {
        return std::nullopt;
    }
    const std::optional<FrameStatement> statement = frameStatementAt(reader, *first, end);
    const FrameSum sum = sumFrames(reader, *first, end);
    if (sum.bytes < sum.junkBytes && sum.longestRun < longRun) {
        return std::nullopt;
    }
    return timingOf(statement, end - *first, [&sum] { return sum; });
}

} // namespace velmora
