#include "measure/MediaDuration.h"

#include "measure/bytes/AudioTags.h"
#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Magic.h"
#include "measure/formats/AiffDuration.h"
#include "measure/formats/AmrDuration.h"
#include "measure/formats/ApeDuration.h"
#include "measure/formats/AuDuration.h"
#include "measure/formats/CafDuration.h"
#include "measure/formats/DsdDuration.h"
#include "measure/formats/FlacDuration.h"
#include "measure/formats/MatroskaDuration.h"
#include "measure/formats/Mp4Duration.h"
#include "measure/formats/MusepackDuration.h"
#include "measure/formats/Sd2Duration.h"
#include "measure/formats/VocDuration.h"
#include "measure/formats/WavDuration.h"
#include "measure/formats/WavPackDuration.h"
#include "measure/frames/FrameStreamDuration.h"
#include "measure/libav/Libav.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>

namespace velmora {

namespace {

using namespace std::string_view_literals;

/// True for the demuxers of bare frames, which we count ourselves.
bool isFrameDemuxer(const ProbedDemuxer& demuxer) {
    return demuxer.name == "mp3" || demuxer.name == "aac";
}

/// How a format is timed: `start` is where it begins, behind any ID3v2 tag. Zero if nothing in it plays;
/// absent if the reader cannot tell.
using TimeReader = std::optional<Timing> (*)(GuardedReader& reader, std::int64_t start);

/// A stream that was never finished states an hour, so nothing is believed.
std::optional<Timing> realMediaDuration(GuardedReader& reader, std::int64_t start) {
    return libav().duration(reader, start, "rm", Doubt::unfinished);
}

struct Format {
    std::string_view pattern; ///< see `matches`
    TimeReader read;          ///< our own reader; null if there is none
    std::string_view
        demuxer; ///< libavformat's, for what our own reader cannot tell; empty if it asked itself
};

constexpr std::int64_t longestPattern = 20;

constexpr auto formats = std::to_array<Format>({
    {"RIFF????WAVE"sv, &wavDuration, "wav"sv},
    {"RIFX????WAVE"sv, &wavDuration, "wav"sv},
    {"RF64????WAVE"sv, &wavDuration, "wav"sv},
    {"BW64????WAVE"sv, &wavDuration, "wav"sv},
    {"riff\x2E\x91\xCF\x11"sv, &wave64Duration, "w64"sv},
    {"FORM????AIFF"sv, &aiffDuration, "aiff"sv},
    {"FORM????AIFC"sv, &aiffDuration, "aiff"sv},
    {".snd"sv, &auDuration, "au"sv},
    {"dns."sv, &auDuration, "au"sv},
    {".sd\0"sv, &auDuration, "au"sv},
    {"\0ds."sv, &auDuration, "au"sv},
    {"caff"sv, &cafDuration, "caf"sv},
    {"fLaC"sv, &flacDuration, "flac"sv},
    {"wvpk"sv, &wavPackDuration, "wv"sv},
    {"MAC "sv, &apeDuration, "ape"sv},
    {"MPCK"sv, &musepackDuration, "mpc8"sv},
    {"MP+"sv, &musepackDuration, "mpc"sv},
    {"DSD "sv, &dsfDuration, "dsf"sv},
    {"FRM8????????DSD "sv, &dsdiffDuration, "iff"sv},
    {"Creative Voice File\x1A"sv, &vocDuration, "voc"sv},
    {"#!AMR"sv, &amrDuration, "amr"sv},
    {"????ftyp"sv, &mp4Duration, "mov"sv},
    {"????moov"sv, &mp4Duration, "mov"sv},
    {"????mdat"sv, &mp4Duration, "mov"sv},
    {"????wide"sv, &mp4Duration, "mov"sv},
    {"OggS"sv, nullptr, "ogg"sv},
    {"\x1A\x45\xDF\xA3"sv, &matroskaDuration, ""sv},
    {"\x30\x26\xB2\x75\x8E\x66\xCF\x11"sv, nullptr, "asf"sv},
    {".RMF"sv, &realMediaDuration, ""sv},
    {".ra\xFD"sv, nullptr, "rm"sv},
    {"TTA1"sv, nullptr, "tta"sv},
});

const Format* formatAt(GuardedReader& reader, std::int64_t start) {
    const auto count = std::clamp<std::int64_t>(reader.size() - start, 0, longestPattern);
    const auto head = reader.header(start, static_cast<std::size_t>(count));
    const auto* const row =
        std::ranges::find_if(formats, [head](const Format& format) { return matches(head, format.pattern); });
    return row == formats.end() ? nullptr : row;
}

std::optional<Timing> knownDuration(GuardedReader& reader, std::int64_t start, const Format& format) {
    const auto seconds = format.read == nullptr ? std::nullopt : format.read(reader, start);
    return seconds || format.demuxer.empty()
               ? seconds
               : libav().duration(reader, start, std::string(format.demuxer), Doubt::none);
}

/// For what begins with no magic that we know.
MediaAnswer probedDuration(GuardedReader& reader, std::int64_t start, const std::filesystem::path& name) {
    const std::optional<ProbedDemuxer> demuxer = libav().probe(reader, start, "");
    std::optional<Timing> timing;
    if (demuxer && demuxer->isMedia && !isFrameDemuxer(*demuxer)) {
        timing = libav().duration(reader, start, demuxer->name, Doubt::none);
    }
    if (!timing) {
        timing = searchedFrameDuration(reader, start, findTrailingTags(reader, start));
    }
    if (timing) {
        return {timing->seconds, false};
    }
    const std::optional<ProbedDemuxer> named = libav().probe(reader, start, name);
    return {std::nullopt, named && (!named->isMedia || isFrameDemuxer(*named))};
}

MediaAnswer answer(GuardedReader& reader, const std::filesystem::path& name) {
    const std::int64_t start = skipLeadingTags(reader);
    if (const Format* const format = formatAt(reader, start)) {
        const std::optional<Timing> timing = knownDuration(reader, start, *format);
        return {timing ? std::optional(timing->seconds) : std::nullopt, false};
    }
    if (const auto timing = frameStreamDuration(reader, start, findTrailingTags(reader, start))) {
        return {timing->seconds, false};
    }
    return probedDuration(reader, start, name);
}

bool hasExtension(const std::filesystem::path& name, std::string_view lowerCase) {
    const std::string extension = name.extension().native();
    return std::ranges::equal(extension, lowerCase,
                              [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
}

} // namespace

MediaAnswer mediaDuration(const RegularFile& file, const std::filesystem::path& name,
                          const std::stop_token& stop) {
    if (hasExtension(name, ".sd2")) {
        if (const auto timing = sd2Duration(name, file.size(), stop)) {
            return {timing->seconds, false};
        }
    }
    return mediaDuration(sourceOf(file), name, stop);
}

MediaAnswer mediaDuration(const ByteSource& source, const std::filesystem::path& name,
                          const std::stop_token& stop) {
    GuardedReader reader(source, stop);
    MediaAnswer result = answer(reader, name);
    if (result.seconds && (!(*result.seconds > 0) || !std::isfinite(*result.seconds))) {
        return {std::nullopt, true};
    }
    result.isForeign = result.isForeign || (!result.seconds && reader.isOver());
    return result;
}

} // namespace velmora
