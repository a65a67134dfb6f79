#include "measure/formats/MatroskaDuration.h"

#include "measure/formats/EbmlElement.h"
#include "measure/libav/Libav.h"

namespace velmora {

namespace {

// The head of the file, up to the first cluster of media, is walked for the stated length and the kinds of
// the tracks. The length is that of the longest track, so it is taken only where all tracks are audio.
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

constexpr std::uint32_t segmentId = 0x1853'8067;
constexpr std::uint32_t infoId = 0x1549'A966;
constexpr std::uint32_t timestampScaleId = 0x2A'D7B1;
constexpr std::uint32_t durationId = 0x4489;
constexpr std::uint32_t tracksId = 0x1654'AE6B;
constexpr std::uint32_t trackEntryId = 0xAE;
constexpr std::uint32_t trackTypeId = 0x83;
constexpr std::uint32_t clusterId = 0x1F43'B675;
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

/// What stands before the media.
struct Head {
    double timestampScale = 1e6; ///< nanoseconds
    double duration = 0;         ///< in units of the scale; 0 if not stated
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
        }
        return element.id != clusterId;
    });
    const double seconds = head.duration * head.timestampScale / 1e9;
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
