#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Crc.h"
#include "measure/check/FormatChecks.h"
#include "measure/formats/MatroskaDuration.h"
#include "measure/formats/MatroskaElements.h"
#include "measure/formats/MatroskaHead.h"

#include <algorithm>
#include <array>
#include <vector>

namespace velmora {

namespace {

// The elements of the segment stand one directly after the other. An element may begin with the checksum of
// all that follows in it: "CRC-32", id BF, 4 bytes, the lowest first (RFC 8794 section 11.3.1).

constexpr std::uint32_t checksumId = 0xBF;
constexpr std::int64_t checksumBytes = 4;

/// What may stand in a segment (RFC 9559 section 5.1): SeekHead, Info, Tracks, Cluster, Cues, Attachments,
/// Chapters, Tags; Void (RFC 8794 section 11.3.2); CRC-32.
constexpr auto segmentParts =
    std::to_array<std::uint32_t>({0x114D'9B74, Matroska::infoId, Matroska::tracksId, Matroska::clusterId,
                                  0x1C53'BB6B, 0x1941'A469, 0x1043'A770, 0x1254'C367, 0xEC, checksumId});

struct SegmentWalk {
    std::int64_t end = 0; ///< of the last element
    bool isDamaged = false;
    bool isCutOff = false;
};

/// Reads all of `element`. Whether it holds its checksum, or has none.
bool holdsChecksum(GuardedReader& reader, const EbmlElement& element, std::vector<std::uint8_t>& buffer) {
    const auto first = ebmlElementAt(reader, element.content);
    const bool hasChecksum = first && first->id == checksumId && first->size == checksumBytes;
    const auto stored =
        hasChecksum ? reader.header(first->content, checksumBytes) : std::span<const std::uint8_t>();
    const std::uint32_t stated = stored.empty() ? 0 : le32(stored, 0);
    std::int64_t at = hasChecksum ? first->content + checksumBytes : element.content;
    const std::int64_t end = element.content + *element.size;
    Crc32 sum;
    while (at < end) {
        const auto count = static_cast<std::size_t>(std::min(std::ssize(buffer), end - at));
        const std::size_t got = reader.audio(at, std::span(buffer).first(count));
        if (got == 0) {
            return false;
        }
        sum.take(std::span(buffer).first(got));
        at += static_cast<std::int64_t>(got);
    }
    return !hasChecksum || sum.value() == stated;
}

/// Whether the elements in `cluster` fill it to its end.
bool isFilled(GuardedReader& reader, const EbmlElement& cluster) {
    std::int64_t at = cluster.content;
    forEachEbmlElement(reader, cluster, [&](const EbmlElement& element) {
        at = element.content + element.size.value_or(0);
        return true;
    });
    return at == cluster.content + *cluster.size;
}

SegmentWalk walkSegment(GuardedReader& reader, const EbmlElement& segment) {
    SegmentWalk walk{.end = segment.content};
    const std::int64_t statedEnd = segment.size ? segment.content + *segment.size : reader.size();
    constexpr std::size_t stepBytes = 256 << 10;
    std::vector<std::uint8_t> buffer(stepBytes);
    while (walk.end < std::min(statedEnd, reader.size())) {
        const auto element = ebmlElementAt(reader, walk.end);
        const bool isPart = element && std::ranges::find(segmentParts, element->id) != segmentParts.end();
        if (!isPart || !element->size) { // the size of live clusters is not known: they end with the file
            walk.isDamaged |= !isPart && segment.size;
            walk.end = isPart || !segment.size ? reader.size() : walk.end;
            return walk;
        }
        walk.isCutOff = *element->size > reader.size() - element->content;
        if (walk.isCutOff) {
            walk.end = reader.size();
            return walk;
        }
        walk.isDamaged |= !holdsChecksum(reader, *element, buffer) ||
                          (element->id == Matroska::clusterId && !isFilled(reader, *element));
        walk.end = element->content + *element->size;
    }
    walk.isCutOff = statedEnd > reader.size();
    return walk;
}

} // namespace

std::int64_t checkMatroska(Examination& file, std::int64_t start) {
    GuardedReader header = file.header();
    const auto segment = matroskaSegment(header, start);
    if (!segment) {
        return start;
    }
    const MatroskaHead head = readMatroskaHead(header, *segment);
    const auto secondsOf = [&](double units) { return units * head.timestampScale / 1e9; };
    const SegmentWalk walk = walkSegment(file.whole(), *segment);
    Lengths lengths;
    if (head.duration > 0 && head.hasAudio && !head.hasOther) {
        lengths = {.stated = secondsOf(head.duration - head.begin),
                   .found = secondsOf(head.duration - head.begin)};
    }
    if (walk.isCutOff) {
        const auto timing = matroskaDuration(header, start);
        lengths.found = timing ? std::optional(timing->seconds) : std::nullopt;
        file.note(FindingKind::truncated, lengths);
    }
    if (secondsOf(head.begin) > paddingTolerance) {
        file.note(FindingKind::offset, {.stated = {}, .found = secondsOf(head.begin)});
    }
    if (walk.isDamaged) {
        file.note(FindingKind::damaged, {.stated = lengths.stated, .found = {}});
    } else {
        checkRest(file, walk.end, file.size(), lengths);
    }
    return walk.end;
}

} // namespace velmora
