#include "measure/formats/ApeDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"
#include "measure/bytes/PartitionPoint.h"

#include <algorithm>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Every frame but the last has the same number of blocks, so the number of frames and the blocks of the last
// make the length. Where the file ends before its last frame does, or where the header does not tell that,
// the seek table tells how many frames begin in it. The layouts follow the files that the encoder of each
// version writes; numbers have the lowest byte first.
//
// From version 3980 on, the descriptor:
//
//   offset  size  field
//        0     4  "MAC "
//        4     2  version, times 1,000
//        8     4  size of the descriptor
//       12     4  size of the header after it
//       16     4  size of the seek table after that
//       20     4  size of the kept WAV header
//       24     8  size of the frames
//       32    20  size of what follows the frames, checksum
//
// and the header:
//
//   offset  size  field
//        0     4  compression, flags
//        4     4  blocks of a frame
//        8     4  blocks of the last frame
//       12     4  frames
//       16     2  bits of a sample
//       18     2  channels
//       20     4  blocks a second
//
// Before version 3980; the blocks of a frame follow from version and compression:
//
//   offset  size  field
//        0     4  "MAC "
//        4     2  version, times 1,000
//        6     2  compression
//        8     2  flags
//       10     2  channels
//       12     4  blocks a second
//       16     8  sizes of the kept WAV header and of what follows the frames
//       24     4  frames
//       28     4  blocks of the last frame
//       32     4  peak                        if flag 0x04 is set
//              4  entries of the seek table   if flag 0x10 is set
//                 the kept WAV header         if flag 0x20 is not set
//                 the seek table

constexpr std::size_t versionAt = 4;
constexpr int describedVersion = 3980;

constexpr std::size_t descriptorBytes = 52;
constexpr std::size_t descriptorSizeAt = 8;
constexpr std::size_t headerSizeAt = 12;
constexpr std::size_t seekTableSizeAt = 16;
constexpr std::size_t keptHeaderSizeAt = 20;
constexpr std::size_t framesSizeAt = 24;

constexpr std::size_t headerBytes = 24;
constexpr std::size_t frameBlocksAt = 4;
constexpr std::size_t lastBlocksAt = 8;
constexpr std::size_t framesAt = 12;
constexpr std::size_t channelsAt = 18;
constexpr std::size_t rateAt = 20;

constexpr std::size_t oldHeaderBytes = 32;
constexpr std::size_t oldCompressionAt = 6;
constexpr std::size_t oldFlagsAt = 8;
constexpr std::size_t oldChannelsAt = 10;
constexpr std::size_t oldRateAt = 12;
constexpr std::size_t oldKeptHeaderSizeAt = 16;
constexpr std::size_t oldFramesAt = 24;
constexpr std::size_t oldLastBlocksAt = 28;

constexpr int hasPeak = 0x04;
constexpr int hasSeekCount = 0x10;
constexpr int keepsNoHeader = 0x20;

constexpr std::int64_t seekEntryBytes = 4; // where a frame begins, seen from the start
constexpr std::int64_t minFrameBytes = 8;  // a checksum, and what says that all is silent

struct ApeHeader {
    std::int64_t frameBlocks = 0; ///< in every frame but the last
    std::int64_t lastBlocks = 0;
    std::int64_t frames = 0;
    std::int64_t rate = 0;
    std::int64_t channels = 0;
    std::int64_t seekTableAt = 0;
    std::optional<double> end = {}; ///< where the last frame ends; absent if not stated
};

std::optional<ApeHeader> parseDescribed(GuardedReader& reader, std::int64_t start) {
    const Bytes descriptor = reader.header(start, descriptorBytes);
    if (descriptor.empty()) {
        return std::nullopt;
    }
    const std::int64_t headerAt = start + le32(descriptor, descriptorSizeAt);
    const std::int64_t seekTableAt = headerAt + le32(descriptor, headerSizeAt);
    const double end = static_cast<double>(seekTableAt) + le32(descriptor, seekTableSizeAt) +
                       le32(descriptor, keptHeaderSizeAt) +
                       static_cast<double>(le64(descriptor, framesSizeAt));
    const Bytes header = reader.header(headerAt, headerBytes);
    if (header.empty()) {
        return std::nullopt;
    }
    return ApeHeader{le32(header, frameBlocksAt),
                     le32(header, lastBlocksAt),
                     le32(header, framesAt),
                     le32(header, rateAt),
                     le16(header, channelsAt),
                     seekTableAt,
                     end};
}

std::optional<ApeHeader> parseOld(GuardedReader& reader, std::int64_t start, int version) {
    constexpr int extraHigh = 4000;
    const Bytes header = reader.header(start, oldHeaderBytes);
    if (header.empty()) {
        return std::nullopt;
    }
    const bool isLong = version >= 3900 || (version >= 3800 && le16(header, oldCompressionAt) == extraHigh);
    const std::int64_t frameBlocks = version >= 3950 ? 294'912 : isLong ? 73'728 : 9'216;
    const int flags = le16(header, oldFlagsAt);
    const std::int64_t seekTableAt = start + static_cast<std::int64_t>(oldHeaderBytes) +
                                     ((flags & hasPeak) != 0 ? 4 : 0) +
                                     ((flags & hasSeekCount) != 0 ? 4 : 0) +
                                     ((flags & keepsNoHeader) != 0 ? 0 : le32(header, oldKeptHeaderSizeAt));
    return ApeHeader{frameBlocks,
                     le32(header, oldLastBlocksAt),
                     le32(header, oldFramesAt),
                     le32(header, oldRateAt),
                     le16(header, oldChannelsAt),
                     seekTableAt};
}

/// How many frames are whole: all of them, or of a file that was cut off those whose successor begins in it
/// or at its end. None where not even the seek table is there, and that many frames.
std::int64_t framesThere(GuardedReader& reader, std::int64_t start, const ApeHeader& header) {
    const std::int64_t rest = reader.size() - header.seekTableAt;
    if (header.end && *header.end <= static_cast<double>(reader.size())) {
        return std::min(header.frames, rest / minFrameBytes);
    }
    if (header.frames > rest / seekEntryBytes) {
        return 0;
    }
    const auto isReached = [&](std::int64_t frame) {
        const Bytes entry = reader.header(header.seekTableAt + frame * seekEntryBytes, seekEntryBytes);
        return !entry.empty() && start + le32(entry, 0) <= reader.size();
    };
    if (!header.end && isReached(header.frames - 1)) {
        return std::min(header.frames, rest / minFrameBytes);
    }
    return std::max<std::int64_t>(0, partitionPoint(header.frames, isReached) - 1);
}

} // namespace

std::optional<Timing> apeDuration(GuardedReader& reader, std::int64_t start) {
    const Bytes magic = reader.header(start, versionAt + 2);
    if (!matches(magic, "MAC ")) {
        return std::nullopt;
    }
    const int version = le16(magic, versionAt);
    const auto header =
        version >= describedVersion ? parseDescribed(reader, start) : parseOld(reader, start, version);
    if (!header || header->frames == 0 || header->rate == 0) {
        return std::nullopt;
    }
    const auto secondsOf = [&](std::int64_t frames, std::int64_t lastBlocks) {
        const double blocks = static_cast<double>(frames) * static_cast<double>(header->frameBlocks) +
                              static_cast<double>(lastBlocks);
        return blocks / static_cast<double>(header->rate);
    };
    const double stated = secondsOf(header->frames - 1, header->lastBlocks);
    const Sampling sampling = samplingOf(static_cast<double>(header->rate), header->channels);
    const std::int64_t there = framesThere(reader, start, *header);
    if (there == header->frames) {
        return sampled(statedTiming(stated), sampling);
    }
    return Timing{.seconds = secondsOf(there, 0),
                  .basis = Basis::counted,
                  .stated = stated,
                  .doubt = Doubt::beyondEnd,
                  .frames = there,
                  .sampling = sampling};
}

} // namespace velmora
