#include "measure/MediaDuration.h"

#include "measure/GuardedReader.h"
#include "measure/Id3Tags.h"
#include "measure/LibavDuration.h"
#include "measure/LibavFile.h"
#include "measure/Magic.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <array>
#include <string_view>

namespace velmora {

namespace {

using namespace std::string_view_literals;

/// How a format is timed: `start` is where it begins, behind any ID3v2 tag.
using TimeReader = std::optional<double> (*)(GuardedReader& reader, std::int64_t start);

struct Format {
    std::string_view pattern;
    TimeReader read;          ///< our own reader; null if there is none
    std::string_view demuxer; ///< libavformat's, for what our own reader cannot tell; empty if there is none
};

// In the order they are tried.
constexpr auto formats = std::to_array<Format>({
    {"RIFF????WAVE"sv, nullptr, "wav"sv},
    {"RF64????WAVE"sv, nullptr, "wav"sv},
    {"fLaC"sv, nullptr, "flac"sv},
    {"????ftyp"sv, nullptr, "mov"sv},
    {"FORM????AIF"sv, nullptr, "aiff"sv},
    {".snd"sv, nullptr, "au"sv},
    {"caff"sv, nullptr, "caf"sv},
    {"OggS"sv, nullptr, "ogg"sv},
    {"\x1A\x45\xDF\xA3"sv, nullptr, "matroska"sv},
    {"wvpk"sv, nullptr, "wv"sv},
    {"MAC "sv, nullptr, "ape"sv},
    {"MPCK"sv, nullptr, "mpc8"sv},
    {"MP+"sv, nullptr, "mpc"sv},
    {"DSD "sv, nullptr, "dsf"sv},
    {"FRM8"sv, nullptr, "iff"sv},
    {"Creative Voice File\x1A"sv, nullptr, "voc"sv},
    {"riff\x2E\x91\xCF\x11"sv, nullptr, "w64"sv},
    {"#!AMR"sv, nullptr, "amr"sv},
    {".RMF"sv, nullptr, "rm"sv},
    {".ra\xFD"sv, nullptr, "rm"sv},
    {"TTA1"sv, nullptr, "tta"sv},
    {"\x30\x26\xB2\x75\x8E\x66\xCF\x11"sv, nullptr, "asf"sv},
});

} // namespace

MediaAnswer mediaDuration(const RegularFile& file, const std::filesystem::path& name,
                          const std::stop_token& stop) {
    GuardedReader reader(sourceOf(file), stop);
    const std::int64_t start = skipLeadingTags(reader);
    const auto head =
        reader.header(start, static_cast<std::size_t>(std::min<std::int64_t>(32, reader.size() - start)));
    const auto* const format =
        std::ranges::find_if(formats, [&](const Format& row) { return matches(head, row.pattern); });
    if (format != formats.end()) {
        std::optional<double> seconds = format->read == nullptr ? std::nullopt : format->read(reader, start);
        if (!seconds && !format->demuxer.empty()) {
            seconds = libavDuration(reader, start, std::string(format->demuxer));
        }
        return {seconds, false};
    }
    const AVInputFormat* const demuxer = probeDemuxer(reader, start, "");
    if (demuxer != nullptr && isMediaDemuxer(*demuxer)) {
        return {libavDuration(reader, start, demuxer->name), false};
    }
    const AVInputFormat* const named = probeDemuxer(reader, start, name);
    return {std::nullopt, named != nullptr && !isMediaDemuxer(*named)};
}

} // namespace velmora
