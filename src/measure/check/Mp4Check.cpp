#include "measure/bytes/ByteOrder.h"
#include "measure/check/FormatChecks.h"
#include "measure/formats/Mp4Boxes.h"
#include "measure/formats/Mp4Duration.h"
#include "measure/formats/Mp4Track.h"

#include <algorithm>
#include <array>

namespace velmora {

namespace {

// The reader of the format holds the sample table against the header and the size of the file. What it does
// not look at are boxes after the media, a second file that was joined to the first, and the clock of the
// first fragment: "moof" / "traf" / "tfdt" (ISO/IEC 14496-12 section 8.8.12) has, after version (1) and flags
// (3), the time of the first sample in 4 bytes, in version 1 in 8, in units of the track.

struct Boxes {
    std::int64_t end = 0;                   ///< of the last box
    bool isCutOff = false;                  ///< the file ends before it does
    std::optional<Mp4Box> movie;            ///< the first one
    std::optional<Mp4Box> data;             ///< the first one with media
    std::optional<Mp4Box> fragment;         ///< likewise
    std::optional<std::int64_t> secondFile; ///< where one begins that was joined
};

/// True for what a box can be called: four letters, digits or signs.
bool isName(std::uint32_t type) {
    for (int i = 0; i < 4; ++i, type >>= 8) {
        const std::uint32_t letter = type & 0xFF;
        if ((letter < ' ' || letter > '~') && letter != 0xA9) {
            return false;
        }
    }
    return true;
}

Boxes walkBoxes(GuardedReader& reader, std::int64_t start) {
    Boxes boxes{.end = start, .movie = {}, .data = {}, .fragment = {}, .secondFile = {}};
    while (const auto box = mp4BoxAt(reader, boxes.end, reader.size())) {
        if (!isName(box->type)) {
            break;
        }
        if (box->type == mp4Type("moov")) {
            if (boxes.movie && !boxes.secondFile) {
                boxes.secondFile = boxes.end;
            }
            boxes.movie = boxes.movie ? boxes.movie : box;
        } else if (box->type == mp4Type("ftyp") && boxes.movie && !boxes.secondFile) {
            boxes.secondFile = boxes.end;
        } else if (box->type == mp4Type("mdat") && !boxes.data) {
            boxes.data = box;
        } else if (box->type == mp4Type("moof") && !boxes.fragment) {
            boxes.fragment = box;
        }
        boxes.isCutOff = box->isCutOff;
        boxes.end = box->end;
    }
    return boxes;
}

/// When the first fragment begins, in units of its track; 0 where it does not say.
std::int64_t beginOf(GuardedReader& reader, const Mp4Box& fragment) {
    constexpr std::int64_t timeAt = 4;
    const auto track = findMp4Box(reader, fragment, mp4Type("traf"));
    const auto time = track ? findMp4Box(reader, *track, mp4Type("tfdt")) : std::nullopt;
    if (!time) {
        return 0;
    }
    const auto version = reader.header(time->content, 1);
    if (!version.empty() && version[0] == 1) {
        const auto bytes = reader.header(time->content + timeAt, 8);
        return bytes.empty() ? 0 : static_cast<std::int64_t>(be64(bytes, 0) & 0x7FFF'FFFF'FFFF'FFFF);
    }
    const auto bytes = reader.header(time->content + timeAt, 4);
    return bytes.empty() ? 0 : be32(bytes, 0);
}

/// The first track of sound.
struct Sound {
    std::int64_t scale = 0;  ///< units a second; 0 if there is none
    std::uint32_t codec = 0; ///< the name of its entry in "stsd", which has 8 bytes before its entries
};

Sound soundOf(GuardedReader& reader, const Mp4Box& movie) {
    constexpr std::int64_t firstEntryAt = 8;
    Sound sound;
    forEachMp4Box(reader, movie.content, movie.end, [&](const Mp4Box& box) {
        const Mp4Track track =
            box.type == mp4Type("trak") && sound.scale == 0 ? readMp4Track(reader, box) : Mp4Track();
        if (track.isAudio && track.sampleTable) {
            const auto list = findMp4Box(reader, *track.sampleTable, mp4Type("stsd"));
            const auto entry =
                list ? mp4BoxAt(reader, list->content + firstEntryAt, list->end) : std::nullopt;
            sound = {track.timeScale, entry ? entry->type : 0};
        }
    });
    return sound;
}

/// Whether silence in `codec` takes some bytes a frame that are not zero.
bool isNeverZero(std::uint32_t codec) {
    constexpr std::array codecs = {mp4Type("mp4a"), mp4Type("alac"), mp4Type("Opus"), mp4Type("fLaC"),
                                   mp4Type(".mp3")};
    return std::ranges::find(codecs, codec) != codecs.end();
}

/// Takes note of a clock of fragments that does not start at 0.
void checkClock(Examination& file, GuardedReader& reader, const Boxes& boxes, std::int64_t scale) {
    if (boxes.fragment && scale > 0) {
        const double begin =
            static_cast<double>(beginOf(reader, *boxes.fragment)) / static_cast<double>(scale);
        if (begin > paddingTolerance) {
            file.note(FindingKind::offset, {.stated = {}, .found = begin});
        }
    }
}

} // namespace

std::int64_t checkMp4(Examination& file, std::int64_t start) {
    GuardedReader header = file.header();
    const auto timing = mp4Duration(header, start);
    const Lengths lengths = timing ? Lengths{timing->stated, timing->seconds} : Lengths();
    if (timing && timing->doubt != Doubt::none && timing->doubt != Doubt::unfinished) {
        file.compare(lengths, paddingTolerance);
    }
    const Boxes boxes = walkBoxes(file.whole(), start);
    if (boxes.isCutOff) {
        file.note(FindingKind::truncated, lengths);
    }
    const Sound sound = boxes.movie ? soundOf(header, *boxes.movie) : Sound();
    checkClock(file, header, boxes, sound.scale);
    if (boxes.data && isNeverZero(sound.codec) && file.hasZeros(boxes.data->content, boxes.data->end)) {
        file.note(FindingKind::damaged, {.stated = lengths.stated, .found = {}});
    }
    if (boxes.secondFile) {
        noteSecond(file, *boxes.secondFile, lengths);
    } else {
        checkRest(file, boxes.end, file.size(), lengths);
    }
    return boxes.data && isNeverZero(sound.codec) ? boxes.data->end : start;
}

} // namespace velmora
