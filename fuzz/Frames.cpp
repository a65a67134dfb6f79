// The counters of MPEG audio and ADTS frames.

#include "fuzz/Targets.h"
#include "measure/bytes/GuardedReader.h"
#include "measure/frames/FrameHeader.h"
#include "measure/frames/FrameHopper.h"
#include "measure/frames/FrameStreamDuration.h"
#include "measure/frames/XingHeader.h"

namespace velmora::fuzz {

namespace {

/// The shortest frame of the most samples at the lowest rate: ADTS, 7 bytes of header, 4 × 1024 at 7350 Hz.
constexpr double secondsInByte = 4 * 1024 / 7350.0 / 7;

void checkHeader(Bytes bytes) {
    const auto freeBytes = freeFormatBytes(bytes);
    require(!freeBytes || *freeBytes > 0, "a frame of free format has bytes");
    for (const std::int32_t learnt : {0, freeBytes.value_or(0)}) {
        if (const auto frame = parseFrame(bytes, learnt)) {
            require(frame->bytes > 0 && frame->samples > 0 && frame->rate > 0,
                    "a frame has bytes, samples and a rate");
        }
    }
}

void checkHopper(Bytes bytes) {
    GuardedReader reader(sourceOf(bytes), {});
    const std::int64_t end = reader.size();
    const auto found = findFrame(reader, 0, end);
    require(!found || (*found >= 0 && *found < end), "a frame stands where bytes are");
    const FrameSum sum = sumFrames(reader, 0, end);
    require(sum.seconds >= 0 && sum.frames >= 0, "frames add up");
    require(sum.bytes >= sum.frames && sum.bytes <= end, "whole frames lie within the file");
}

} // namespace

void fuzzFrames(Bytes bytes) {
    checkHeader(bytes);
    checkHopper(bytes);
    const double maxSeconds = secondsInByte * static_cast<double>(bytes.size());
    for (const auto read : {&frameStreamDuration, &searchedFrameDuration}) {
        checkTimer(
            [read](const ByteSource& source) {
                GuardedReader reader(source, {});
                return read(reader, 0, source.size);
            },
            bytes, maxSeconds);
    }
}

void fuzzXing(Bytes bytes) {
    if (const auto header = parseXing(bytes)) {
        require(header->frames.value_or(0) >= 0 && header->bytes.value_or(0) >= 0, "counts are at least 0");
        require(header->startTrim >= 0 && header->endTrim >= 0, "trims are at least 0");
    }
}

} // namespace velmora::fuzz
