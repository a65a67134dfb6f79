#include "measure/formats/Mp4Duration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/formats/Mp4Fragments.h"
#include "measure/formats/Mp4Track.h"

#include <algorithm>

namespace velmora {

namespace {

// Each audio track states the length of its media and the edits that play them; the longest track counts.
// Where media data are missing, the tables of the track tell which of its samples are in the file; where the
// track is empty, its samples are in fragments after the movie (Mp4Fragments.h).

/// The file's outermost boxes.
struct Movie {
    std::optional<Mp4Box> box; ///< "moov"
    bool isCutOff = false;     ///< media data are missing, or end after the end of the file
};

Movie readMovie(GuardedReader& reader, std::int64_t start) {
    Movie movie;
    bool hasData = false;
    std::int64_t at = start;
    while (!movie.box || !hasData) {
        const auto box = mp4BoxAt(reader, at, reader.size());
        if (!box) {
            break;
        }
        if (box->type == mp4Type("moov") && !movie.box) {
            movie.box = box;
        } else if (box->type == mp4Type("mdat")) {
            hasData = true;
            movie.isCutOff |= box->isCutOff;
        }
        at = box->end;
    }
    movie.isCutOff |= !hasData;
    return movie;
}

/// "mvhd" (ISO/IEC 14496-12 section 8.2.2): version (1), flags (3), creation and modification time (4 or 8
/// bytes each), time scale (4).
std::int64_t timeScaleOf(GuardedReader& reader, const Mp4Box& header) {
    constexpr std::int64_t scaleAt = 12;
    constexpr std::int64_t longScaleAt = 20;
    const auto version = reader.header(header.content, 1);
    const bool isLong = !version.empty() && version[0] == 1;
    const auto scale = reader.header(header.content + (isLong ? longScaleAt : scaleAt), 4);
    return scale.empty() ? 0 : be32(scale, 0);
}

Timing trackTiming(GuardedReader& reader, const Mp4Track& track, const Movie& movie,
                   std::int64_t movieScale) {
    if (!track.isAudio || track.timeScale <= 0) {
        return {};
    }
    const bool isStated = track.mediaDuration > 0;
    const double stated = editedSeconds(track, track.mediaDuration, movieScale);
    if (isStated && !movie.isCutOff) {
        return statedTiming(stated);
    }
    std::int64_t duration = mediaDurationBefore(reader, track, reader.size());
    if (duration == 0) {
        duration = fragmentsDuration(reader, *movie.box, track.id, movie.box->end);
    }
    return {.seconds = editedSeconds(track, duration, movieScale),
            .basis = Basis::counted,
            .stated = isStated ? std::optional(stated) : std::nullopt,
            .doubt = isStated ? Doubt::beyondEnd : Doubt::unfinished};
}

} // namespace

std::optional<Timing> mp4Duration(GuardedReader& reader, std::int64_t start) {
    const Movie movie = readMovie(reader, start);
    if (!movie.box || findMp4Box(reader, *movie.box, mp4Type("cmov"))) {
        return std::nullopt;
    }
    Timing longest;
    std::int64_t movieScale = 0;
    forEachMp4Box(reader, movie.box->content, movie.box->end, [&](const Mp4Box& box) {
        if (box.type == mp4Type("mvhd")) {
            movieScale = timeScaleOf(reader, box);
        } else if (box.type == mp4Type("trak")) {
            longest =
                std::ranges::max(longest, trackTiming(reader, readMp4Track(reader, box), movie, movieScale),
                                 {}, &Timing::seconds);
        }
    });
    return longest;
}

} // namespace velmora
