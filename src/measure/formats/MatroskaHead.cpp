#include "measure/formats/MatroskaHead.h"

#include "measure/formats/MatroskaElements.h"

#include <algorithm>

namespace velmora {

namespace {

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

void takeInfo(GuardedReader& reader, const EbmlElement& info, MatroskaHead& head) {
    forEachEbmlElement(reader, info, [&](const EbmlElement& element) {
        if (element.id == Matroska::timestampScaleId) {
            head.timestampScale = static_cast<double>(ebmlInteger(reader, element).value_or(0));
        } else if (element.id == Matroska::durationId) {
            head.duration = ebmlNumber(reader, element).value_or(0);
        }
        return true;
    });
}

void takeTracks(GuardedReader& reader, const EbmlElement& tracks, MatroskaHead& head) {
    forEachEbmlElement(reader, tracks, [&](const EbmlElement& entry) {
        if (entry.id == Matroska::trackEntryId) {
            std::optional<std::uint64_t> type;
            forEachEbmlElement(reader, entry, [&](const EbmlElement& element) {
                if (element.id == Matroska::trackTypeId) {
                    type = ebmlInteger(reader, element);
                } else if (element.id == Matroska::audioId && head.sampling.rate == 0) {
                    head.sampling = samplingIn(reader, element);
                }
                return !type || (type == Matroska::audioTrack && head.sampling.rate == 0);
            });
            (type == Matroska::audioTrack ? head.hasAudio : head.hasOther) = true;
        }
        return true;
    });
}

} // namespace

MatroskaHead readMatroskaHead(GuardedReader& reader, const EbmlElement& segment) {
    MatroskaHead head;
    forEachEbmlElement(reader, segment, [&](const EbmlElement& element) {
        if (element.id == Matroska::infoId) {
            takeInfo(reader, element, head);
        } else if (element.id == Matroska::tracksId) {
            takeTracks(reader, element, head);
        } else if (element.id == Matroska::clusterId) {
            head.begin = firstTime(reader, element);
        }
        return element.id != Matroska::clusterId;
    });
    return head;
}

} // namespace velmora
