#include "measure/frames/FrameStreamDuration.h"

#include "measure/frames/FrameHopper.h"
#include "measure/frames/XingHeader.h"

#include <algorithm>
#include <cstdlib>

namespace velmora {

namespace {

// A first frame of layer 3 may state the frames that follow (XingHeader.h). Its statement is taken if the
// size that it states is about that of the stream; then no other frame is read. Otherwise all frames are
// counted, and the encoder's own samples at both ends are taken off.

constexpr std::int64_t agreementPart = 50; // a stated size may differ from the real one by one part in 50

bool agrees(std::int64_t stated, std::int64_t real) {
    return std::abs(stated - real) <= real / agreementPart;
}

std::optional<Timing> positive(const Timing& timing) {
    return timing.seconds > 0 ? std::optional(timing) : std::nullopt;
}

/// `frame` stands at `start` and states `header` instead of holding sound.
std::optional<Timing> statedDuration(GuardedReader& reader, const AudioFrame& frame, const XingHeader& header,
                                     std::int64_t start, std::int64_t end) {
    const auto secondsOf = [&frame](std::int64_t samples) {
        return static_cast<double>(samples) / frame.rate;
    };
    const auto stated =
        header.frames > 0
            ? std::optional(secondsOf(*header.frames * frame.samples - header.startTrim - header.endTrim))
            : std::nullopt;
    if (stated && header.bytes && agrees(*header.bytes, end - start)) {
        return positive(statedTiming(*stated));
    }
    const FrameSum sum = sumFrames(reader, start, end); // with the frame that states
    const bool hasItsEnd = sum.frames > header.frames.value_or(0);
    return positive({.seconds = sum.seconds - secondsOf(frame.samples + header.startTrim +
                                                        (hasItsEnd ? header.endTrim : 0)),
                     .basis = Basis::counted,
                     .stated = stated,
                     .doubt = !stated || !header.bytes      ? Doubt::unfinished
                              : *header.bytes > end - start ? Doubt::beyondEnd
                                                            : Doubt::disagrees,
                     .frames = std::max<std::int64_t>(0, sum.frames - 1)});
}

} // namespace

std::optional<Timing> frameStreamDuration(GuardedReader& reader, std::int64_t start, std::int64_t end) {
    constexpr std::int32_t maxFrameBytes = 2048; // more than any frame that may hold a statement
    const auto bytes = reader.headerUpTo(start, maxFrameBytes, end);
    const std::optional<AudioFrame> frame = parseFrame(bytes, maxFrameBytes);
    if (frame && frame->isLayer3) {
        const std::size_t length = std::min(bytes.size(), static_cast<std::size_t>(frame->bytes));
        if (const std::optional<XingHeader> header = parseXing(bytes.first(length))) {
            return statedDuration(reader, *frame, *header, start, end);
        }
    }
    if (!isFrameAt(reader, start, end)) {
        return std::nullopt;
    }
    const FrameSum sum = sumFrames(reader, start, end);
    return positive({.seconds = sum.seconds, .basis = Basis::counted, .frames = sum.frames});
}

std::optional<Timing> searchedFrameDuration(GuardedReader& reader, std::int64_t start, std::int64_t end) {
    const std::optional<std::int64_t> first = findFrame(reader, start, end);
    if (!first || sumFrames(reader, *first, end).bytes < (end - *first) / 2) {
        return std::nullopt;
    }
    return frameStreamDuration(reader, *first, end);
}

} // namespace velmora
