#include "measure/formats/FlacDuration.h"

#include "measure/bytes/AudioTags.h"
#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/TailSearch.h"
#include "measure/formats/FlacFrame.h"

#include <algorithm>
#include <vector>

namespace velmora {

namespace {

// STREAMINFO states the samples, but encoders that write into a pipe leave it empty, and a file that was cut
// out of another or cut off keeps the other's. So the length is what lies between the first frame and the
// last: the header of a frame tells the number of its first sample and how many it holds. The end of the file
// is searched backwards for the last one.
//
// File (RFC 9639, section 8):
//
//   offset  size  field
//        0     4  "fLaC"
//        4        metadata blocks: STREAMINFO (FlacFrame.cpp) and others
//                 frames
//
// Metadata block (section 8.1):
//
//   offset  size  field
//        0     1  1 bit: the last block; 7 bits: type, 0 is STREAMINFO
//        1     3  size of the content
//        4        content

constexpr std::int64_t magicBytes = 4;
constexpr std::size_t blockHeaderBytes = 4;
constexpr std::uint8_t lastBlockBit = 0x80;
constexpr std::uint32_t sizeMask = 0xFF'FFFF;
constexpr std::uint8_t streamInfoType = 0;
constexpr std::size_t streamInfoBytes = 34;

/// Reads what stands before the first frame in few steps: the first bytes were read to recognise the format;
/// pictures are passed over, and padding is mostly read together with what is around it.
class HeadReader {
public:
    HeadReader(GuardedReader& reader, std::int64_t start)
        : m_reader(reader)
        , m_knownEnd(start + static_cast<std::int64_t>(GuardedReader::windowBytes)) {}

    /// None if the file has fewer than `count` bytes at `offset`. Valid until the next call.
    std::span<const std::uint8_t> bytes(std::int64_t offset, std::size_t count) {
        if (offset + static_cast<std::int64_t>(count) <= m_knownEnd) {
            return m_reader.header(offset, count);
        }
        if (!holds(offset, count)) {
            constexpr std::size_t stepBytes = 16 << 10;
            m_buffer.resize(stepBytes);
            m_buffer.resize(m_reader.search(offset, m_buffer));
            m_offset = offset;
        }
        return holds(offset, count)
                   ? std::span(m_buffer).subspan(static_cast<std::size_t>(offset - m_offset), count)
                   : std::span<const std::uint8_t>();
    }

private:
    bool holds(std::int64_t offset, std::size_t count) const {
        return offset >= m_offset && static_cast<std::size_t>(offset - m_offset) + count <= m_buffer.size();
    }

    GuardedReader& m_reader;
    const std::int64_t m_knownEnd;
    std::vector<std::uint8_t> m_buffer; // what was read beyond, from `m_offset` on
    std::int64_t m_offset = 0;
};

/// What the file tells before its second frame.
struct Head {
    FlacStreamInfo stream;
    std::int64_t audioAt = 0;     ///< no frame begins before this
    std::int64_t firstSample = 0; ///< of the first frame; 0 if none was found where it has to be
};

/// The frame at `at`, which decides how many samples the blocks have: STREAMINFO may be of another file.
std::optional<FlacFrame> firstFrame(HeadReader& head, std::int64_t at, FlacStreamInfo& stream) {
    const auto bytes = head.bytes(at, maxFlacHeaderBytes);
    const auto frame = parseFlacFrame(bytes, stream);
    if (!frame || !frame->hasFixedSize) {
        return frame;
    }
    stream.blockSamples = static_cast<std::int32_t>(frame->samples);
    return parseFlacFrame(bytes, stream);
}

/// Absent without STREAMINFO.
std::optional<Head> readHead(GuardedReader& reader, std::int64_t start) {
    HeadReader head(reader, start);
    std::optional<FlacStreamInfo> stream;
    std::int64_t at = start + magicBytes;
    for (bool isLast = false; !isLast;) {
        const auto block = head.bytes(at, blockHeaderBytes);
        if (block.empty()) { // the file ends in a block, or no frame follows
            at = start + magicBytes;
            break;
        }
        isLast = (block[0] & lastBlockBit) != 0;
        const bool isStreamInfo = (block[0] & ~lastBlockBit) == streamInfoType;
        const std::int64_t content = at + static_cast<std::int64_t>(blockHeaderBytes);
        at = content + (be32(block, 0) & sizeMask);
        if (isStreamInfo && !stream) {
            stream = parseStreamInfo(head.bytes(content, streamInfoBytes));
        }
    }
    if (!stream) {
        return std::nullopt;
    }
    Head found{*stream, std::min(at, reader.size()), 0};
    if (const auto frame = firstFrame(head, found.audioAt, found.stream)) {
        found.firstSample = frame->firstSample;
    }
    return found;
}

/// The sample after the last whole frame, numbered as the frames are; absent if none was found where one can
/// be expected.
std::optional<std::int64_t> endOfLastFrame(GuardedReader& reader, std::int64_t start, const Head& head) {
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
    const auto head = readHead(reader, start);
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
