#include "measure/formats/Mp4Fragments.h"

#include "measure/bytes/ByteOrder.h"

#include <algorithm>

namespace velmora {

namespace {

// The "moof" boxes are walked in the order of the file. Each lists, for the track, its samples in runs; a
// sample's duration stands in the run, else in the fragment's header, else in the movie. What a "moof" adds
// up to counts as far as the "mdat" after it is in the file.
//
// The boxes begin with version (1) and flags (3); a field that depends on a flag stands only if it is set.
//
//   box     fields after version and flags                                          ISO/IEC 14496-12
//   "trex"  4 track, 8 description, 12 duration of a sample                         section 8.8.3
//   "tfhd"  4 track, data offset (8, flag 0x01), description (4, 0x02), duration of section 8.8.7
//           a sample (4, 0x08)
//   "trun"  4 samples, data offset (4, flag 0x01), first flags (4, 0x04), then for  section 8.8.8
//           each sample duration (0x100), size (0x200), flags (0x400), shift (0x800)

/// The four bytes at `at` of what `box` holds; 0 where it ends before.
std::uint32_t numberAt(GuardedReader& reader, const Mp4Box& box, std::int64_t at) {
    return mp4WordAt(reader, box, at).value_or(0);
}

std::uint32_t flagsOf(GuardedReader& reader, const Mp4Box& box) {
    return numberAt(reader, box, 0) & 0xFF'FFFF;
}

/// What the movie states for samples of which no fragment states it.
std::uint32_t defaultDuration(GuardedReader& reader, const Mp4Box& movie, std::uint32_t trackId) {
    std::uint32_t duration = 0;
    if (const auto extends = findMp4Box(reader, movie, mp4Type("mvex"))) {
        forEachMp4Box(reader, extends->content, extends->end, [&](const Mp4Box& box) {
            if (box.type == mp4Type("trex") && numberAt(reader, box, 4) == trackId) {
                duration = numberAt(reader, box, 12);
            }
        });
    }
    return duration;
}

/// What the fragment's header, "tfhd", states, or else the movie.
std::uint32_t fragmentDefault(GuardedReader& reader, const Mp4Box& header, std::uint32_t movieDefault) {
    constexpr std::uint32_t hasOffset = 0x01;
    constexpr std::uint32_t hasDescription = 0x02;
    constexpr std::uint32_t hasDuration = 0x08;
    const std::uint32_t flags = flagsOf(reader, header);
    const std::int64_t at = 8 + ((flags & hasOffset) != 0 ? 8 : 0) + ((flags & hasDescription) != 0 ? 4 : 0);
    return (flags & hasDuration) != 0 ? numberAt(reader, header, at) : movieDefault;
}

/// The samples of one "trun".
std::int64_t runDuration(GuardedReader& reader, const Mp4Box& run, std::uint32_t sampleDuration) {
    constexpr std::uint32_t hasOffset = 0x001;
    constexpr std::uint32_t hasFirstFlags = 0x004;
    constexpr std::uint32_t hasDuration = 0x100;
    constexpr std::uint32_t sampleFields = 0xF00;
    const std::uint32_t flags = flagsOf(reader, run);
    const std::int64_t samples = numberAt(reader, run, 4);
    if ((flags & hasDuration) == 0) {
        return std::min<std::int64_t>(samples * (sampleDuration & 0x7FFF'FFFF), maxMp4Duration);
    }
    std::int64_t sampleBytes = 0;
    for (std::uint32_t field = flags & sampleFields; field != 0; field &= field - 1) {
        sampleBytes += 4;
    }
    std::int64_t at = 8 + ((flags & hasOffset) != 0 ? 4 : 0) + ((flags & hasFirstFlags) != 0 ? 4 : 0);
    std::int64_t duration = 0;
    for (std::int64_t i = 0; i < samples && at + 4 <= run.size(); ++i, at += sampleBytes) {
        duration += numberAt(reader, run, at);
    }
    return duration;
}

std::int64_t fragmentDuration(GuardedReader& reader, const Mp4Box& fragment, std::uint32_t trackId,
                              std::uint32_t movieDefault) {
    std::int64_t duration = 0;
    forEachMp4Box(reader, fragment.content, fragment.end, [&](const Mp4Box& track) {
        const auto header =
            track.type == mp4Type("traf") ? findMp4Box(reader, track, mp4Type("tfhd")) : std::nullopt;
        if (!header || numberAt(reader, *header, 4) != trackId) {
            return;
        }
        const std::uint32_t sampleDuration = fragmentDefault(reader, *header, movieDefault);
        forEachMp4Box(reader, track.content, track.end, [&](const Mp4Box& run) {
            if (run.type == mp4Type("trun")) {
                duration = std::min(duration + runDuration(reader, run, sampleDuration), maxMp4Duration);
            }
        });
    });
    return duration;
}

/// How much of the data that should stand in `box` is in the file.
double partThere(GuardedReader& reader, const Mp4Box& box) {
    const auto header = reader.header(box.content - 8, 4);
    const std::uint32_t stated = header.empty() ? 0 : be32(header, 0);
    return box.isCutOff && stated > 8 ? static_cast<double>(box.size()) / (stated - 8) : 1;
}

} // namespace

std::int64_t fragmentsDuration(GuardedReader& reader, const Mp4Box& movie, std::uint32_t trackId,
                               std::int64_t at) {
    const std::uint32_t movieDefault = defaultDuration(reader, movie, trackId);
    std::int64_t whole = 0;
    std::int64_t last = 0; // of the fragment whose data come next
    forEachMp4Box(reader, at, reader.size(), [&](const Mp4Box& box) {
        if (box.type == mp4Type("moof")) {
            last = fragmentDuration(reader, box, trackId, movieDefault);
        } else if (box.type == mp4Type("mdat")) {
            const double there = partThere(reader, box);
            whole = std::min(whole + static_cast<std::int64_t>(static_cast<double>(last) * there),
                             maxMp4Duration);
            last = 0;
        }
    });
    return whole;
}

} // namespace velmora
