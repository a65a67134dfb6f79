#include "measure/formats/FlacDuration.h"

#include "measure/bytes/AudioTags.h"
#include "measure/bytes/TailSearch.h"
#include "measure/formats/FlacFrame.h"

#include <algorithm>
#include <vector>

namespace velmora {

namespace {

// STREAMINFO states the samples, but encoders that write into a pipe leave it empty, and the file may be cut
// off. So the end of the file is searched backwards for the header of a frame: it tells the number of its
// first sample and how many it holds. If all that is stated has not been reached there, the frame counts only
// when its checksum shows that it is whole.
//
// File (RFC 9639, section 8):
//
//   offset  size  field
//        0     4  "fLaC"
//        4     1  type of the first block: STREAMINFO
//        5     3  its size
//        8    34  STREAMINFO (FlacFrame.cpp)
//                 further blocks, then the frames

constexpr std::int64_t streamInfoAt = 8;
constexpr std::size_t streamInfoBytes = 34;

/// The sample after the last whole frame; absent if none was found where one can be expected.
std::optional<std::int64_t> endOfLastFrame(GuardedReader& reader, std::int64_t start,
                                           const FlacStreamInfo& stream) {
    constexpr std::int64_t minTail = 16 << 10;
    constexpr std::int64_t maxTail = 64 << 10;
    constexpr std::int64_t tagsBytes = 256;
    const std::int64_t audio = start + streamInfoAt;
    const std::int64_t tail = std::clamp(stream.frameBytes + tagsBytes, minTail, maxTail);
    const auto find = [&](std::span<const std::uint8_t> bytes,
                          std::int64_t offset) -> std::optional<std::int64_t> {
        const auto frame = lastFlacFrame(bytes, stream);
        if (!frame) {
            return offset == audio ? std::optional<std::int64_t>(0) : std::nullopt;
        }
        const std::int64_t end = frame->firstSample + frame->samples;
        if (stream.samples > 0 && end >= stream.samples) {
            return end;
        }
        const std::int64_t tagsAt = findTrailingTags(reader, start) - offset;
        const auto first = static_cast<std::int64_t>(frame->at);
        const auto length = std::clamp(tagsAt, first, static_cast<std::int64_t>(bytes.size())) - first;
        const bool isWhole = isWholeFlacFrame(bytes.subspan(frame->at, static_cast<std::size_t>(length)));
        return isWhole ? end : frame->firstSample;
    };
    return searchTail(reader, audio, tail, find);
}

} // namespace

std::optional<Timing> flacDuration(GuardedReader& reader, std::int64_t start) {
    const auto stream = parseStreamInfo(reader.header(start + streamInfoAt, streamInfoBytes));
    if (!stream) {
        return std::nullopt;
    }
    const auto secondsOf = [&stream](std::int64_t samples) {
        return static_cast<double>(samples) / stream->rate;
    };
    const std::int64_t end = endOfLastFrame(reader, start, *stream).value_or(stream->samples);
    return withinFile(stream->samples > 0 ? std::optional(secondsOf(stream->samples)) : std::nullopt,
                      {.seconds = secondsOf(end), .basis = Basis::counted});
}

} // namespace velmora
