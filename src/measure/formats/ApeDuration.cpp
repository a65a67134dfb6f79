#include "measure/formats/ApeDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"
#include "measure/bytes/PartitionPoint.h"

#include <algorithm>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t versionAt = 4;
constexpr int describedVersion = 3980; // from here on a descriptor stands before the header

struct ApeHeader {
    std::int64_t frameBlocks = 0; ///< in every frame but the last
    std::int64_t lastBlocks = 0;
    std::int64_t frames = 0;
    std::int64_t rate = 0;
    std::int64_t seekTableAt = 0; ///< where each frame begins, 4 bytes each
    double end = 0;               ///< where the last frame ends; 0 if not stated
};

/// Descriptor: sizes of 8 itself, 12 the header, 16 the seek table, 20 the WAV header kept, 24 the frames (8
/// bytes). Header: 4 blocks a frame, 8 of the last frame, 12 frames, 20 rate.
std::optional<ApeHeader> parseDescribed(GuardedReader& reader, std::int64_t start) {
    constexpr std::size_t descriptorBytes = 52;
    constexpr std::size_t headerBytes = 24;
    const Bytes descriptor = reader.header(start, descriptorBytes);
    if (descriptor.empty()) {
        return std::nullopt;
    }
    const std::int64_t headerAt = start + le32(descriptor, 8);
    const std::int64_t seekTableAt = headerAt + le32(descriptor, 12);
    const double end = static_cast<double>(seekTableAt) + le32(descriptor, 16) + le32(descriptor, 20) +
                       static_cast<double>(le64(descriptor, 24));
    const Bytes header = reader.header(headerAt, headerBytes);
    if (header.empty()) {
        return std::nullopt;
    }
    return ApeHeader{le32(header, 4), le32(header, 8), le32(header, 12), le32(header, 20), seekTableAt, end};
}

/// 6 compression, 8 flags, 12 rate, 24 frames, 28 blocks of the last frame; the blocks of a frame follow from
/// the version.
std::optional<ApeHeader> parseOld(GuardedReader& reader, std::int64_t start, int version) {
    constexpr std::size_t headerBytes = 32;
    constexpr int extraHigh = 4000;
    const Bytes header = reader.header(start, headerBytes);
    if (header.empty()) {
        return std::nullopt;
    }
    const bool isLong = version >= 3900 || (version >= 3800 && le16(header, 6) == extraHigh);
    const std::int64_t frameBlocks = version >= 3950 ? 294'912 : isLong ? 73'728 : 9'216;
    return ApeHeader{frameBlocks, le32(header, 28), le32(header, 24), le32(header, 12)};
}

/// How many frames are whole: all of them, or of a file that was cut off those whose successor begins in it
/// or just behind it.
std::int64_t framesThere(GuardedReader& reader, std::int64_t start, const ApeHeader& header) {
    if (header.end <= static_cast<double>(reader.size())) {
        return header.frames;
    }
    const auto isReached = [&](std::int64_t frame) {
        const Bytes entry = reader.header(header.seekTableAt + frame * 4, 4);
        return !entry.empty() && start + le32(entry, 0) <= reader.size();
    };
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
    const std::int64_t there = framesThere(reader, start, *header);
    if (there == header->frames) {
        return statedTiming(stated);
    }
    return Timing{.seconds = secondsOf(there, 0),
                  .basis = Basis::counted,
                  .stated = stated,
                  .doubt = Doubt::beyondEnd,
                  .frames = there};
}

} // namespace velmora
