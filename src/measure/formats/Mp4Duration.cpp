#include "measure/formats/Mp4Duration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/formats/Mp4Fragments.h"
#include "measure/formats/Mp4Priming.h"
#include "measure/formats/Mp4Track.h"

#include <algorithm>

namespace velmora {

namespace {

// Each audio track states the length of its media and the edits that play them, and its tables tell how long
// its samples last; the longest track counts. Where media data are missing, the tables tell which of the
// samples are in the file; where the track is empty, they are in fragments after the movie (Mp4Fragments.h).

/// The file's outermost boxes.
struct Movie {
    std::optional<Mp4Box> box; ///< "moov"
    bool isCutOff = false;     ///< media data are missing, or may end after the end of the file
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
            movie.isCutOff |= box->isCutOff || box->isOpen;
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

/// Whether the file is so small for what tells `seconds` that much of that may lie beyond its end: below the
/// bit rates of music.
bool isDoubtful(const GuardedReader& reader, double seconds) {
    constexpr double minBytesInSecond = 1'000;
    return seconds * minBytesInSecond > static_cast<double>(reader.size());
}

/// `movieScale` stands in for a track without a time scale of its own.
Timing trackTiming(GuardedReader& reader, Mp4Track track, const Movie& movie, std::int64_t movieScale) {
    if (track.timeScale <= 0) {
        track.timeScale = movieScale;
    }
    if (!track.isAudio || track.timeScale <= 0) {
        return {};
    }
    const auto priming = track.edits.empty() ? readMp4Priming(reader, *movie.box) : std::nullopt;
    const auto secondsOf = [&](std::int64_t duration) {
        return priming ? soundOf(*priming, duration) / static_cast<double>(track.timeScale)
                       : editedSeconds(track, duration, movieScale);
    };
    const auto stated =
        track.mediaDuration > 0 ? std::optional(secondsOf(track.mediaDuration)) : std::nullopt;
    bool isAllThere = !movie.isCutOff && beginsBefore(reader, track, reader.size());
    const std::int64_t all = isAllThere ? sampleTableDuration(reader, track) : 0;
    if (isAllThere && isDoubtful(reader, secondsOf(std::max(all, track.mediaDuration)))) {
        isAllThere = endsBefore(reader, track, reader.size());
    }
    if (isAllThere && (all == 0 || all == track.mediaDuration) && stated) {
        return statedTiming(*stated);
    }
    std::int64_t duration = isAllThere ? all : mediaDurationBefore(reader, track, reader.size());
    if (duration == 0) {
        duration = fragmentsDuration(reader, *movie.box, track.id, movie.box->end);
    }
    return foundTiming({.seconds = secondsOf(duration), .basis = Basis::counted}, stated);
}

} // namespace

std::optional<Timing> mp4Duration(GuardedReader& reader, std::int64_t start) {
    const Movie movie = readMovie(reader, start);
    if (!movie.box) {
        return std::nullopt;
    }
    Timing longest;
    std::int64_t movieScale = 0;
    bool isCompressed = false;
    forEachMp4Box(reader, movie.box->content, movie.box->end, [&](const Mp4Box& box) {
        if (box.type == mp4Type("mvhd")) {
            movieScale = timeScaleOf(reader, box);
        } else if (box.type == mp4Type("trak")) {
            const Mp4Track track = readMp4Track(reader, box);
            Timing timing = trackTiming(reader, track, movie, movieScale);
            timing.sampling = track.sampling;
            longest = std::ranges::max(longest, timing, {}, &Timing::seconds);
        } else if (box.type == mp4Type("cmov")) {
            isCompressed = true;
        }
    });
    return isCompressed ? std::nullopt : std::optional(longest);
}

} // namespace velmora
