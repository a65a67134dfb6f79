#include "measure/formats/MatroskaDuration.h"

#include "measure/formats/MatroskaElements.h"
#include "measure/formats/MatroskaHead.h"
#include "measure/libav/Libav.h"

namespace velmora {

namespace {

// The head of the file, up to the first cluster of media, is walked for the stated length and the kinds of
// the tracks. The length is that of the longest track, so it is taken only where all tracks are audio. It
// counts from zero, where the media need not begin: the time of the first block is taken off.

bool isCutOff(GuardedReader& reader, const EbmlElement& segment) {
    return segment.size && *segment.size > reader.size() - segment.content;
}

/// The length stated at the head, which is that of the longest track. Absent if none is, or if there are
/// tracks other than audio, whose it could be.
std::optional<Timing> statedAtHead(GuardedReader& reader, const EbmlElement& segment) {
    const MatroskaHead head = readMatroskaHead(reader, segment);
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
