#include "measure/formats/MatroskaDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/formats/EbmlElement.h"
#include "measure/libav/Libav.h"

#include <algorithm>
#include <bit>

namespace velmora {

namespace {

// The head of the file, up to the first cluster of media, is walked for the stated length and the kinds of
// the tracks. The length is that of the longest track, so it is taken only where all tracks are audio. It
// counts from zero, where the media need not begin: the time of the first block is taken off.
//
//   element          id           content                                           RFC 9559
//   Segment          18538067     everything but the EBML header                    section 5.1
//   Info             1549A966     elements                                          section 5.1.2
//   TimestampScale   2AD7B1       nanoseconds of a unit of time                     section 5.1.2.9
//   Duration         4489         units of time, floating point                     section 5.1.2.10
//   Tracks           1654AE6B     elements                                          section 5.1.4
//   TrackEntry       AE           elements                                          section 5.1.4.1
//   TrackType        83           2: audio                                          section 5.1.4.1.3
//   Cluster          1F43B675     media                                             section 5.1.3
//   Timestamp        E7           units of time, before the blocks                  section 5.1.3.1
//   SimpleBlock      A3           track, time from the cluster's (2 bytes, signed)  section 5.1.3.4
//   BlockGroup       A0           elements                                          section 5.1.3.5
//   Block            A1           as SimpleBlock                                    section 5.1.3.5.1

constexpr std::uint32_t segmentId = 0x1853'8067;
constexpr std::uint32_t infoId = 0x1549'A966;
constexpr std::uint32_t timestampScaleId = 0x2A'D7B1;
constexpr std::uint32_t durationId = 0x4489;
constexpr std::uint32_t tracksId = 0x1654'AE6B;
constexpr std::uint32_t trackEntryId = 0xAE;
constexpr std::uint32_t trackTypeId = 0x83;
constexpr std::uint32_t clusterId = 0x1F43'B675;
constexpr std::uint32_t timestampId = 0xE7;
constexpr std::uint32_t simpleBlockId = 0xA3;
constexpr std::uint32_t blockGroupId = 0xA0;
constexpr std::uint32_t blockId = 0xA1;
constexpr std::uint64_t audioTrack = 2;

/// The one element that holds everything, after the one that says what the file is.
std::optional<EbmlElement> segmentOf(GuardedReader& reader, std::int64_t start) {
    const std::optional<EbmlElement> head = ebmlElementAt(reader, start);
    if (!head || !head->size || *head->size > reader.size()) {
        return std::nullopt;
    }
    const std::optional<EbmlElement> segment = ebmlElementAt(reader, head->content + *head->size);
    return segment && segment->id == segmentId ? segment : std::nullopt;
}

bool isCutOff(GuardedReader& reader, const EbmlElement& segment) {
    return segment.size && *segment.size > reader.size() - segment.content;
}

/// When a block begins, in units of time after its cluster does.
std::optional<std::int64_t> blockTime(GuardedReader& reader, const EbmlElement& block) {
    constexpr std::int64_t maxTrackBytes = 8;
    const auto track = reader.header(block.content, 1);
    const std::int64_t trackBytes = track.empty() ? 0 : std::countl_zero(track[0]) + 1;
    if (trackBytes == 0 || trackBytes > maxTrackBytes) {
        return std::nullopt;
    }
    const auto time = reader.header(block.content + trackBytes, 2);
    return time.empty() ? std::nullopt
                        : std::optional<std::int64_t>(static_cast<std::int16_t>(be16(time, 0)));
}

/// When the first block of `cluster` begins, in units of time; 0 where that cannot be told.
double firstTime(GuardedReader& reader, const EbmlElement& cluster) {
    std::uint64_t clusterTime = 0;
    std::optional<std::int64_t> time;
    forEachEbmlElement(reader, cluster, [&](const EbmlElement& element) {
        if (element.id == timestampId) {
            clusterTime = ebmlInteger(reader, element).value_or(0);
        } else if (element.id == simpleBlockId) {
            time = blockTime(reader, element);
        } else if (element.id == blockGroupId) {
            forEachEbmlElement(reader, element, [&](const EbmlElement& part) {
                time = part.id == blockId ? blockTime(reader, part) : time;
                return !time;
            });
        }
        return !time;
    });
    return std::max(0.0, static_cast<double>(clusterTime) + static_cast<double>(time.value_or(0)));
}

/// What stands before the media.
struct Head {
    double timestampScale = 1e6; ///< nanoseconds
    double duration = 0;         ///< in units of the scale; 0 if not stated
    double begin = 0;            ///< when the first block begins, likewise
    bool hasAudio = false;
    bool hasOther = false; ///< tracks that are no audio, or that do not say what they are

    void takeInfo(GuardedReader& reader, const EbmlElement& info) {
        forEachEbmlElement(reader, info, [&](const EbmlElement& element) {
            if (element.id == timestampScaleId) {
                timestampScale = static_cast<double>(ebmlInteger(reader, element).value_or(0));
            } else if (element.id == durationId) {
                duration = ebmlNumber(reader, element).value_or(0);
            }
            return true;
        });
    }

    void takeTracks(GuardedReader& reader, const EbmlElement& tracks) {
        forEachEbmlElement(reader, tracks, [&](const EbmlElement& entry) {
            if (entry.id == trackEntryId) {
                std::optional<std::uint64_t> type;
                forEachEbmlElement(reader, entry, [&](const EbmlElement& element) {
                    if (element.id == trackTypeId) {
                        type = ebmlInteger(reader, element);
                    }
                    return !type;
                });
                (type == audioTrack ? hasAudio : hasOther) = true;
            }
            return true;
        });
    }
};

/// The length stated at the head, which is that of the longest track. Absent if none is, or if there are
/// tracks other than audio, whose it could be.
std::optional<double> statedAtHead(GuardedReader& reader, const EbmlElement& segment) {
    Head head;
    forEachEbmlElement(reader, segment, [&](const EbmlElement& element) {
        if (element.id == infoId) {
            head.takeInfo(reader, element);
        } else if (element.id == tracksId) {
            head.takeTracks(reader, element);
        } else if (element.id == clusterId) {
            head.begin = firstTime(reader, element);
        }
        return element.id != clusterId;
    });
    const double seconds = (head.duration - head.begin) * head.timestampScale / 1e9;
    return seconds > 0 && head.hasAudio && !head.hasOther ? std::optional(seconds) : std::nullopt;
}

} // namespace

std::optional<Timing> matroskaDuration(GuardedReader& reader, std::int64_t start) {
    const std::optional<EbmlElement> segment = segmentOf(reader, start);
    if (segment && isCutOff(reader, *segment)) {
        return libav().duration(reader, start, "matroska", Doubt::beyondEnd);
    }
    const std::optional<double> stated = segment ? statedAtHead(reader, *segment) : std::nullopt;
    return stated ? statedTiming(*stated) : libav().duration(reader, start, "matroska", Doubt::none);
}

} // namespace velmora
