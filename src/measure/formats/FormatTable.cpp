#include "measure/formats/FormatTable.h"

#include "measure/bytes/Magic.h"
#include "measure/formats/AiffDuration.h"
#include "measure/formats/AmrDuration.h"
#include "measure/formats/ApeDuration.h"
#include "measure/formats/AsfDuration.h"
#include "measure/formats/AuDuration.h"
#include "measure/formats/CafDuration.h"
#include "measure/formats/DsdDuration.h"
#include "measure/formats/FlacDuration.h"
#include "measure/formats/MatroskaDuration.h"
#include "measure/formats/Mp4Duration.h"
#include "measure/formats/MusepackDuration.h"
#include "measure/formats/OggDuration.h"
#include "measure/formats/RealMediaDuration.h"
#include "measure/formats/VocDuration.h"
#include "measure/formats/WavDuration.h"
#include "measure/formats/WavPackDuration.h"
#include "system/FileName.h"

#include <algorithm>
#include <array>
#include <string>

namespace velmora {

namespace {

using namespace std::string_view_literals;
using HeaderDuration::asfSeconds;
using HeaderDuration::oggSeconds;

constexpr auto formatTable = std::to_array<Format>({
    {"WAV", "RIFF????WAVE"sv, &wavDuration, "wav"},
    {"WAV", "RIFX????WAVE"sv, &wavDuration, "wav"},
    {"RF64", "RF64????WAVE"sv, &wavDuration, "wav"},
    {"BW64", "BW64????WAVE"sv, &wavDuration, "wav"},
    {"Wave64", "riff\x2E\x91\xCF\x11"sv, &wave64Duration, "w64"},
    {"AIFF", "FORM????AIFF"sv, &aiffDuration, "aiff"},
    {"AIFF-C", "FORM????AIFC"sv, &aiffDuration, "aiff"},
    {"AU", ".snd"sv, &auDuration, "au"},
    {"AU", "dns."sv, &auDuration, "au"},
    {"AU", ".sd\0"sv, &auDuration, "au"},
    {"AU", "\0ds."sv, &auDuration, "au"},
    {"CAF", "caff"sv, &cafDuration, "caf"},
    {"FLAC", "fLaC"sv, &flacDuration, "flac"},
    {"WavPack", "wvpk"sv, &wavPackDuration, "wv"},
    {"Monkey's Audio", "MAC "sv, &apeDuration, "ape"},
    {"Musepack SV8", "MPCK"sv, &musepackDuration, "mpc8"},
    {"Musepack SV7", "MP+"sv, &musepackDuration, "mpc"},
    {"DSF", "DSD "sv, &dsfDuration, "dsf"},
    {"DSDIFF", "FRM8????????DSD "sv, &dsdiffDuration, "iff"},
    {"VOC", "Creative Voice File\x1A"sv, &vocDuration, "voc"},
    {"AMR", "#!AMR"sv, &amrDuration, "amr"},
    {"MP4", "????ftyp"sv, &mp4Duration, "mov"},
    {"MP4", "????moov"sv, &mp4Duration, "mov"},
    {"MP4", "????mdat"sv, &mp4Duration, "mov"},
    {"MP4", "????wide"sv, &mp4Duration, "mov"},
    {"Ogg", "OggS"sv, nullptr, "ogg"},
    {"Matroska", "\x1A\x45\xDF\xA3"sv, &matroskaDuration, ""},
    {"ASF", "\x30\x26\xB2\x75\x8E\x66\xCF\x11"sv, nullptr, "asf"},
    {"RealMedia", ".RMF"sv, &realMediaDuration, ""},
    {"RealAudio", ".ra\xFD"sv, nullptr, "rm"},
    {"True Audio", "TTA1"sv, nullptr, "tta"},
});

constexpr std::size_t maxPatternBytes = std::ranges::max(formatTable, {}, [](const Format& format) {
                                            return format.pattern.size();
                                        }).pattern.size();

constexpr auto headerTable = std::to_array<HeaderFormat>({
    {"ogg", "Ogg", &oggSeconds, Basis::counted},
    {"oga", "Ogg", &oggSeconds, Basis::counted},
    {"opus", "Ogg", &oggSeconds, Basis::counted},
    {"ogx", "Ogg", &oggSeconds, Basis::counted},
    {"spx", "Ogg", &oggSeconds, Basis::counted},
    {"wma", "ASF", &asfSeconds, Basis::stated},
    {"asf", "ASF", &asfSeconds, Basis::stated},
    {"wmv", "ASF", &asfSeconds, Basis::stated},
});

} // namespace

std::span<const Format> formats() {
    return formatTable;
}

const Format* formatAt(GuardedReader& reader, std::int64_t start) {
    const auto head = reader.headerUpTo(start, maxPatternBytes);
    const auto* const row = std::ranges::find_if(
        formatTable, [head](const Format& format) { return matches(head, format.pattern); });
    return row == formatTable.end() ? nullptr : row;
}

std::span<const HeaderFormat> headerFormats() {
    return headerTable;
}

const HeaderFormat* headerFormatOf(const std::filesystem::path& path) {
    const auto* const row =
        std::ranges::find(headerTable, classifyingExtension(path), &HeaderFormat::extension);
    return row == headerTable.end() ? nullptr : row;
}

} // namespace velmora
