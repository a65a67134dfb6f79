#include "measure/frames/FrameStatement.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace velmora {

namespace {

constexpr std::int64_t agreementPart = 50; // a stated size may differ from the real one by one part in 50
constexpr std::int64_t minFrameBytes = 24; // of layer 3: 8 kbit/s at 24 kHz

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
bool countsItself(GuardedReader& reader, const FrameStatement& statement, std::int64_t start,
                  std::int64_t end) {
    const std::int64_t first = start + statement.frame.bytes;
    const auto frame = parseFrame(reader.headerUpTo(first, frameHeaderBytes, end));
    const std::int64_t stated = statement.header.frames.value_or(0);
    return frame && frame->kind == statement.frame.kind && fill(stated - 1, *frame, end - first) &&
           !fill(stated, *frame, end - first);
}

} // namespace

std::optional<double> FrameStatement::seconds() const {
    return header.frames > 0
               ? std::optional(secondsOf(*header.frames * frame.samples - header.startTrim - header.endTrim))
               : std::nullopt;
}

bool FrameStatement::isBelieved(std::int64_t size) const {
    return header.frames > 0 && *header.frames <= size / minFrameBytes && header.bytes &&
           std::abs(*header.bytes - size) <= size / agreementPart;
}

std::optional<FrameStatement> frameStatementAt(GuardedReader& reader, std::int64_t start, std::int64_t end) {
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
    FrameStatement statement{*frame, frameSampling(bytes), *header};
    if (countsItself(reader, statement, start, end)) {
        --*statement.header.frames;
    }
    return statement;
}

Timing countedTiming(const FrameSum& sum, const FrameStatement& statement, std::int64_t size) {
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

} // namespace velmora
