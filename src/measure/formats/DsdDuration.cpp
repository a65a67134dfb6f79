#include "measure/formats/DsdDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Chunks.h"
#include "measure/bytes/Magic.h"

#include <algorithm>
#include <limits>

namespace velmora {

namespace {

// DSF states the samples of a channel; the bytes from the data to the end of the file bound them. DSDIFF
// states rate and channels in "PROP", which is stepped into as if its content were chunks of the file; then
// the size of "DSD " makes the length. "DST ", which is compressed, is stepped into for its "FRTE".
//
// DSF (Sony, "DSF File Format Specification" 1.01), the lowest byte of a number first. All sizes count their
// header.
//
//   offset  size  field
//        0    28  "DSD " chunk: name (4), size (8), size of the file (8), where the metadata are (8)
//       28     4  "fmt "
//       32     8  size of this chunk
//       40    12  version, format, channel type
//       52     4  channels
//       56     4  samples a second
//       60     4  bits of a sample
//       64     8  samples of a channel
//       72     8  bytes of a block of one channel (4), reserved; the last blocks are filled up
//       80        "data" chunk: name (4), size (8), samples of one bit
//
// DSDIFF (Philips, "DSDIFF File Format Specification" 1.5), the highest byte of a number first:
//
//   offset  size  field
//        0     4  "FRM8"
//        4     8  size of what follows
//       12     4  "DSD "
//       16        chunks: name (4), size of the content (8), content, filled up to an even size
//
//   chunk   content
//   "PROP"  0 "SND " (4), 4 chunks
//   "FS  "  0 samples a second (4)
//   "CHNL"  0 channels (2)
//   "DSD "  0 samples of one bit
//   "DST "  0 chunks
//   "FRTE"  0 frames (4), 4 frames a second (2)

constexpr std::size_t formatAt = 28;
constexpr std::size_t formatSizeAt = 32;
constexpr std::size_t channelsAt = 52;
constexpr std::size_t rateAt = 56;
constexpr std::size_t samplesAt = 64;
constexpr std::size_t blockBytesAt = 72;
constexpr std::size_t headerBytes = 80;
constexpr std::int64_t dataHeaderBytes = 12;

constexpr std::int64_t dsdiffHeaderBytes = 16;
constexpr ChunkLayout dsdiffChunks{.sizeBytes = 8, .order = SizeOrder::highestByteFirst, .alignment = 2};
constexpr std::int64_t propertyTypeBytes = 4;
constexpr std::size_t frameInformationBytes = 6; // the longest of the contents that are read
constexpr std::int64_t minDstFrameBytes = 12;    // a chunk without content

/// How long `bytes` of samples of one bit play, at `rate` samples a second in each channel. Absent without
/// channels or rate.
std::optional<double> bitSeconds(std::int64_t bytes, std::int64_t channels, std::int64_t rate) {
    if (channels <= 0 || rate <= 0) {
        return std::nullopt;
    }
    const std::int64_t channelBytes = bytes / channels;
    return static_cast<double>(channelBytes) * 8 / static_cast<double>(rate);
}

/// The length of `chunk`, which is called "DSD ".
std::optional<Timing> bitTiming(const Chunk& chunk, std::int64_t channels, std::int64_t rate) {
    constexpr auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const auto there = bitSeconds(chunk.size, channels, rate);
    const auto stated = static_cast<std::int64_t>(std::min(chunk.stated, limit));
    return there ? sampled(sizedTiming(*there, bitSeconds(stated, channels, rate)),
                           samplingOf(static_cast<double>(rate), channels))
                 : std::nullopt;
}

} // namespace

std::optional<Timing> dsfDuration(GuardedReader& reader, std::int64_t start) {
    const auto header = reader.header(start, headerBytes);
    if (header.empty() || !matches(header.subspan(formatAt), "fmt ")) {
        return std::nullopt;
    }
    const std::int64_t channels = le32(header, channelsAt);
    const std::int64_t rate = le32(header, rateAt);
    const std::uint64_t samples = le64(header, samplesAt);
    const std::uint64_t formatBytes = le64(header, formatSizeAt);
    const auto rest = static_cast<std::uint64_t>(reader.size() - start);
    const std::int64_t dataAt = start + static_cast<std::int64_t>(formatAt) +
                                static_cast<std::int64_t>(std::min(formatBytes, rest)) + dataHeaderBytes;
    const std::int64_t bytes = std::max<std::int64_t>(0, reader.size() - dataAt);
    const auto there = bitSeconds(bytes, channels, rate);
    if (!there) {
        return std::nullopt;
    }
    const Sampling sampling = samplingOf(static_cast<double>(rate), channels);
    if (samples == 0 && bytes <= channels * std::int64_t{le32(header, blockBytesAt)}) {
        return sampled(statedTiming(0), sampling); // one block a channel, filled up
    }
    const double stated = static_cast<double>(samples) / static_cast<double>(rate);
    return withinFile(samples > 0 ? std::optional(stated) : std::nullopt,
                      {.seconds = *there, .basis = Basis::sized, .sampling = sampling});
}

std::optional<Timing> dsdiffDuration(GuardedReader& reader, std::int64_t start) {
    std::int64_t channels = 0;
    std::int64_t rate = 0;
    std::int64_t at = start + dsdiffHeaderBytes;
    while (const auto chunk = chunkAt(reader, dsdiffChunks, at)) {
        at = chunk->next;
        if (chunk->name == "DSD ") {
            return bitTiming(*chunk, channels, rate);
        }
        if (chunk->name == "PROP") {
            at = chunk->content + propertyTypeBytes;
        } else if (chunk->name == "DST ") {
            at = chunk->content;
        } else if (const auto value = reader.header(chunk->content, frameInformationBytes); value.empty()) {
            continue;
        } else if (chunk->name == "FS  ") {
            rate = be32(value, 0);
        } else if (chunk->name == "CHNL") {
            channels = be16(value, 0);
        } else if (chunk->name == "FRTE") {
            const double frameRate = std::max<int>(1, be16(value, 4));
            const std::int64_t maxFrames = (reader.size() - chunk->content) / minDstFrameBytes;
            const double maxSeconds = static_cast<double>(maxFrames) / frameRate;
            return withinFile(be32(value, 0) / frameRate,
                              {.seconds = maxSeconds,
                               .basis = Basis::sized,
                               .sampling = samplingOf(static_cast<double>(rate), channels)});
        }
    }
    return std::nullopt;
}

} // namespace velmora
