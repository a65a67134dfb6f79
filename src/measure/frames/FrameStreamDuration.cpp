#include "measure/frames/FrameStreamDuration.h"

#include "measure/frames/FrameHopper.h"
#include "measure/frames/XingHeader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace velmora {

namespace {

// A first frame of layer 3 may state the frames that follow (XingHeader.h). Its statement is taken if the
// size that it states is about that of the stream, and can hold the frames; then no other frame is read.
// Otherwise all frames are counted, and the encoder's own samples at both ends are taken off.

constexpr std::int64_t agreementPart = 50; // a stated size may differ from the real one by one part in 50
constexpr std::int64_t minFrameBytes = 24; // of layer 3: 8 kbit/s at 24 kHz

/// As many frames in a row are sound, however little of a file they are.
constexpr std::int64_t longRun = 100;

/// A first frame that states others instead of holding sound.
struct Statement {
    AudioFrame frame;
    XingHeader header;

    double secondsOf(std::int64_t samples) const { return static_cast<double>(samples) / frame.rate; }

    /// Absent where nothing that could play is stated.
    std::optional<double> seconds() const {
        return header.frames > 0 ? std::optional(secondsOf(*header.frames * frame.samples - header.startTrim -
                                                           header.endTrim))
                                 : std::nullopt;
    }

    /// Whether the stream, of `size` bytes, bears it out.
    bool isBelieved(std::int64_t size) const {
        return header.frames > 0 && *header.frames <= size / minFrameBytes && header.bytes &&
               std::abs(*header.bytes - size) <= size / agreementPart;
    }
};

/// Whether `count` frames of the same bit rate as `frame` take `size` bytes: either padded, so that they keep
/// the rate, or all of the same length.
bool fill(std::int64_t count, const AudioFrame& frame, std::int64_t size) {
    constexpr double rounding = 2; // bytes
    const double bytesOfOne = frame.samples / 8.0 * frame.bitRate / frame.rate;
    const bool isPadded =
        std::abs(static_cast<double>(count) * bytesOfOne - static_cast<double>(size)) < rounding;
    return isPadded || count * static_cast<std::int64_t>(bytesOfOne) == size;
}

/// Some encoders count the frame that states as well. Where the bit rate is constant the size gives it away.
bool countsItself(GuardedReader& reader, const Statement& statement, std::int64_t start, std::int64_t end) {
    const std::int64_t first = start + statement.frame.bytes;
    const auto frame = parseFrame(reader.headerUpTo(first, frameHeaderBytes, end));
    const std::int64_t stated = statement.header.frames.value_or(0);
    return frame && frame->kind == statement.frame.kind && fill(stated - 1, *frame, end - first) &&
           !fill(stated, *frame, end - first);
}

/// What the frame at `start` states; absent if it is sound or no frame.
std::optional<Statement> statementAt(GuardedReader& reader, std::int64_t start, std::int64_t end) {
    constexpr std::int32_t maxFrameBytes = 2048; // more than any frame that may hold a statement
    const auto bytes = reader.headerUpTo(start, maxFrameBytes, end);
    const std::optional<AudioFrame> frame = parseFrame(bytes, maxFrameBytes);
    if (!frame || !frame->isLayer3) {
        return std::nullopt;
    }
    const auto header =
        parseXing(bytes.first(std::min(bytes.size(), static_cast<std::size_t>(frame->bytes))));
    if (!header) {
        return std::nullopt;
    }
    Statement statement{*frame, *header};
    if (countsItself(reader, statement, start, end)) {
        --*statement.header.frames;
    }
    return statement;
}

/// By the frames of a stream of `size` bytes, where its `statement` cannot be believed.
Timing countedTiming(const FrameSum& sum, const Statement& statement, std::int64_t size) {
    const XingHeader& header = statement.header;
    const bool hasItsEnd = sum.frames > header.frames.value_or(0);
    const std::int64_t notSound =
        statement.frame.samples + header.startTrim + (hasItsEnd ? header.endTrim : 0);
    const auto stated = statement.seconds();
    return {.seconds = sum.seconds - statement.secondsOf(notSound),
            .basis = Basis::counted,
            .stated = stated,
            .doubt = !stated || !header.bytes ? Doubt::unfinished
                     : *header.bytes > size   ? Doubt::beyondEnd
                                              : Doubt::disagrees,
            .frames = std::max<std::int64_t>(0, sum.frames - 1)};
}

std::optional<Timing> positive(const Timing& timing) {
    return timing.seconds > 0 ? std::optional(timing) : std::nullopt;
}

/// Times a stream of `size` bytes; `sumOf()` counts its frames, which is seldom needed.
template <typename SumOf>
std::optional<Timing> timingOf(const std::optional<Statement>& statement, std::int64_t size, SumOf sumOf) {
    if (statement && statement->isBelieved(size)) {
        return positive(statedTiming(*statement->seconds()));
    }
    const FrameSum sum = sumOf();
    return positive(statement
                        ? countedTiming(sum, *statement, size)
                        : Timing{.seconds = sum.seconds, .basis = Basis::counted, .frames = sum.frames});
}

} // namespace

std::optional<Timing> frameStreamDuration(GuardedReader& reader, std::int64_t start, std::int64_t end) {
    const std::optional<Statement> statement = statementAt(reader, start, end);
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
    const std::optional<Statement> statement = statementAt(reader, *first, end);
    const FrameSum sum = sumFrames(reader, *first, end);
    if (sum.bytes < sum.junkBytes && sum.longestRun < longRun) {
        return std::nullopt;
    }
    return timingOf(statement, end - *first, [&sum] { return sum; });
}

} // namespace velmora
