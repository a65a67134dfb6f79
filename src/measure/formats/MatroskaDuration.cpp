#include "measure/formats/MatroskaDuration.h"

#include "measure/formats/MatroskaElements.h"
#include "measure/libav/Libav.h"

#include <algorithm>

namespace velmora {

namespace {

// The head of the file, up to the first cluster of media, is walked for the stated length and the kinds of
// the tracks. The length is that of the longest track, so it is taken only where all tracks are audio. It
// counts from zero, where the media need not begin: the time of the first block is taken off.

bool isCutOff(GuardedReader& reader, const EbmlElement& segment) {
    return segment.size && *segment.size > reader.size() - segment.content;
}

/// When the first block of `cluster` begins, in units of time; 0 where that cannot be told.
double firstTime(GuardedReader& reader, const EbmlElement& cluster) {
    std::uint64_t clusterTime = 0;
    std::optional<std::int64_t> time;
    forEachEbmlElement(reader, cluster, [&](const EbmlElement& element) {
        if (element.id == Matroska::timestampId) {
            clusterTime = ebmlInteger(reader, element).value_or(0);
        } else if (element.id == Matroska::simpleBlockId) {
            time = matroskaBlockTime(reader, element);
        } else if (element.id == Matroska::blockGroupId) {
            forEachEbmlElement(reader, element, [&](const EbmlElement& part) {
                time = part.id == Matroska::blockId ? matroskaBlockTime(reader, part) : time;
                return !time;
            });
        }
        return !time;
    });
    return std::max(0.0, static_cast<double>(clusterTime) + static_cast<double>(time.value_or(0)));
}

/// What `audio`, an element of that name, states.
Sampling samplingIn(GuardedReader& reader, const EbmlElement& audio) {
    double rate = 8'000;
    std::uint64_t channels = 1;
    forEachEbmlElement(reader, audio, [&](const EbmlElement& element) {
        if (element.id == Matroska::samplingFrequencyId) {
            rate = ebmlNumber(reader, element).value_or(0);
        } else if (element.id == Matroska::channelsId) {
            channels = ebmlInteger(reader, element).value_or(0);
        }
        return true;
    });
    return samplingOf(rate, static_cast<std::int64_t>(channels));
}

/// What stands before the media.
struct Head {
    double timestampScale = 1e6; ///< nanoseconds
    double duration = 0;         ///< in units of the scale; 0 if not stated
    double begin = 0;            ///< when the first block begins, likewise
    Sampling sampling = {};      ///< of the first track that tells it
    bool hasAudio = false;
    bool hasOther = false; ///< tracks that are no audio, or that do not say what they are

    void takeInfo(GuardedReader& reader, const EbmlElement& info) {
        forEachEbmlElement(reader, info, [&](const EbmlElement& element) {
            if (element.id == Matroska::timestampScaleId) {
                timestampScale = static_cast<double>(ebmlInteger(reader, element).value_or(0));
            } else if (element.id == Matroska::durationId) {
                duration = ebmlNumber(reader, element).value_or(0);
            }
            return true;
        });
    }

    void takeTracks(GuardedReader& reader, const EbmlElement& tracks) {
        forEachEbmlElement(reader, tracks, [&](const EbmlElement& entry) {
            if (entry.id == Matroska::trackEntryId) {
                std::optional<std::uint64_t> type;
                forEachEbmlElement(reader, entry, [&](const EbmlElement& element) {
                    if (element.id == Matroska::trackTypeId) {
                        type = ebmlInteger(reader, element);
                    } else if (element.id == Matroska::audioId && sampling.rate == 0) {
                        sampling = samplingIn(reader, element);
                    }
                    return !type || (type == Matroska::audioTrack && sampling.rate == 0);
                });
                (type == Matroska::audioTrack ? hasAudio : hasOther) = true;
            }
            return true;
        });
    }
};

/// The length stated at the head, which is that of the longest track. Absent if none is, or if there are
/// tracks other than audio, whose it could be.
std::optional<Timing> statedAtHead(GuardedReader& reader, const EbmlElement& segment) {
    Head head;
    forEachEbmlElement(reader, segment, [&](const EbmlElement& element) {
        if (element.id == Matroska::infoId) {
            head.takeInfo(reader, element);
        } else if (element.id == Matroska::tracksId) {
            head.takeTracks(reader, element);
        } else if (element.id == Matroska::clusterId) {
            head.begin = firstTime(reader, element);
        }
        return element.id != Matroska::clusterId;
    });
    const double seconds = (head.duration - head.begin) * head.timestampScale / 1e9;
    return seconds > 0 && head.hasAudio && !head.hasOther ? sampled(statedTiming(seconds), head.sampling)
                                                          : std::nullopt;
}

} // namespace

std::optional<Timing> matroskaDuration(GuardedReader& reader, std::int64_t start) {
    const std::optional<EbmlElement> segment = matroskaSegment(reader, start);
    if (segment && isCutOff(reader, *segment)) {
        return libav().duration(reader, start, "matroska", Doubt::beyondEnd);
    }
    const std::optional<Timing> stated = segment ? statedAtHead(reader, *segment) : std::nullopt;
    return stated ? stated : libav().duration(reader, start, "matroska", Doubt::none);
}

} // namespace velmora
