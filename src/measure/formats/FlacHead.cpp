#include "measure/formats/FlacHead.h"

#include "measure/bytes/ByteOrder.h"

#include <algorithm>
#include <span>
#include <vector>

namespace velmora {

namespace {

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

/// The frame that `bytes` begin with. What it states outranks `stream`, which may be of another file.
std::optional<FlacFrame> firstFrame(std::span<const std::uint8_t> bytes, FlacStreamInfo& stream) {
    const auto frame = parseFlacFrame(bytes, stream);
    if (!frame) {
        return std::nullopt;
    }
    stream.rate = frame->rate;
    if (frame->hasFixedSize) {
        stream.blockSamples = static_cast<std::int32_t>(frame->samples);
    }
    return parseFlacFrame(bytes, stream);
}

} // namespace

std::optional<FlacHead> readFlacHead(GuardedReader& reader, std::int64_t start) {
    HeadReader head(reader, start);
    std::optional<FlacStreamInfo> info;
    std::int64_t at = start + magicBytes;
    bool endsInBlock = false;
    for (bool isLast = false; !isLast;) {
        const auto block = head.bytes(at, blockHeaderBytes);
        if (block.empty()) { // the file ends in a block, or no frame follows
            endsInBlock = true;
            at = start + magicBytes;
            break;
        }
        isLast = (block[0] & lastBlockBit) != 0;
        const bool isStreamInfo = (block[0] & ~lastBlockBit) == streamInfoType;
        const std::int64_t content = at + static_cast<std::int64_t>(blockHeaderBytes);
        at = content + (be32(block, 0) & sizeMask);
        if (isStreamInfo && !info) {
            info = parseStreamInfo(head.bytes(content, streamInfoBytes));
        }
    }
    FlacHead found{info.value_or(FlacStreamInfo()), std::min(at, reader.size()), 0};
    if (const auto frame = firstFrame(head.bytes(found.audioAt, maxFlacHeaderBytes), found.stream)) {
        found.firstSample = frame->firstSample;
    }
    if (found.stream.rate > 0) {
        return found;
    }
    if (endsInBlock) {
        reader.noteCutOff();
    }
    return std::nullopt;
}

std::optional<FlacHead> readBareFlacHead(GuardedReader& reader, std::int64_t start) {
    FlacHead found{.stream = {}, .audioAt = start};
    const auto frame = firstFrame(reader.headerUpTo(start, maxFlacHeaderBytes), found.stream);
    if (!frame) {
        return std::nullopt;
    }
    found.firstSample = frame->firstSample;
    return found;
}

} // namespace velmora
