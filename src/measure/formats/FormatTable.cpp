#include "measure/formats/FormatTable.h"

#include "measure/bytes/Magic.h"
#include "measure/formats/AdifDuration.h"
#include "measure/formats/AiffDuration.h"
#include "measure/formats/AmrDuration.h"
#include "measure/formats/ApeDuration.h"
#include "measure/formats/AsfDuration.h"
#include "measure/formats/AuDuration.h"
#include "measure/formats/AudibleDuration.h"
#include "measure/formats/CafDuration.h"
#include "measure/formats/DsdDuration.h"
#include "measure/formats/FlacDuration.h"
#include "measure/formats/FlashDuration.h"
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
using HeaderDuration::asfTiming;
using HeaderDuration::oggTiming;

// What a byte can play. No bound is tight: it only has to tell a length that is possible from one that was
// made up.

/// Silence of lossless coders: a frame of some ten bytes holds up to 300,000 samples, at 8 kHz or more.
constexpr double losslessSilence = 10;

/// Samples of one bit; rates below 1 Hz cannot be stated.
constexpr double oneBitSamples = 8;

/// Speech at 400 bits a second, slower than any coder for it; or a frame of 20 ms in which nothing is sent.
constexpr double slowestSpeech = 0.02;

/// Frames of 26 ms, at the lowest rate 36 ms, of a few bytes.
constexpr double emptyFrames = 0.1;

constexpr auto formatTable = std::to_array<Format>({
    {"WAV", "RIFF????WAVE"sv, &wavDuration, "wav", oneBitSamples},
    {"WAV", "RIFX????WAVE"sv, &wavDuration, "wav", oneBitSamples},
    {"RF64", "RF64????WAVE"sv, &wavDuration, "wav", oneBitSamples},
    {"BW64", "BW64????WAVE"sv, &wavDuration, "wav", oneBitSamples},
    {"Wave64", "riff\x2E\x91\xCF\x11"sv, &wave64Duration, "w64", oneBitSamples},
    {"AIFF", "FORM????AIFF"sv, &aiffDuration, "aiff", oneBitSamples},
    {"AIFF-C", "FORM????AIFC"sv, &aiffDuration, "aiff", oneBitSamples},
    {"AU", ".snd"sv, &auDuration, "au", oneBitSamples},
    {"AU", "dns."sv, &auDuration, "au", oneBitSamples},
    {"AU", ".sd\0"sv, &auDuration, "au", oneBitSamples},
    {"AU", "\0ds."sv, &auDuration, "au", oneBitSamples},
    {"CAF", "caff"sv, &cafDuration, "caf", losslessSilence},
    {"FLAC", "fLaC"sv, &flacDuration, "flac", losslessSilence},
    {"WavPack", "wvpk"sv, &wavPackDuration, "wv", losslessSilence},
    {"Monkey's Audio", "MAC "sv, &apeDuration, "ape", losslessSilence},
    {"Musepack SV8", "MPCK"sv, &musepackDuration, "mpc8", emptyFrames},
    {"Musepack SV7", "MP+"sv, &musepackDuration, "mpc", emptyFrames},
    {"DSF", "DSD "sv, &dsfDuration, "dsf", oneBitSamples},
    {"DSDIFF", "FRM8????????DSD "sv, &dsdiffDuration, "iff", oneBitSamples},
    {"VOC", "Creative Voice File\x1A"sv, &vocDuration, "voc", losslessSilence},
    {"AMR", "#!AMR"sv, &amrDuration, "amr", slowestSpeech},
    {"AAC", "ADIF"sv, &adifDuration, "", emptyFrames},
    {"MP4", "????ftyp"sv, &mp4Duration, "mov", losslessSilence},
    {"MP4", "????moov"sv, &mp4Duration, "mov", losslessSilence},
    {"MP4", "????mdat"sv, &mp4Duration, "mov", losslessSilence},
    {"MP4", "????wide"sv, &mp4Duration, "mov", losslessSilence},
    {"Ogg", "OggS"sv, nullptr, "ogg", losslessSilence},
    {"Matroska", "\x1A\x45\xDF\xA3"sv, &matroskaDuration, "", losslessSilence},
    {"ASF", "\x30\x26\xB2\x75\x8E\x66\xCF\x11"sv, nullptr, "asf", losslessSilence},
    {"Flash video", "FLV\x01"sv, &flashDuration, "", losslessSilence},
    {"RealMedia", ".RMF"sv, &realMediaDuration, "", slowestSpeech},
    {"RealAudio", ".ra\xFD"sv, nullptr, "rm", slowestSpeech},
    {"Audible", "????\x57\x90\x75\x36"sv, &audibleDuration, "aa", slowestSpeech},
    {"True Audio", "TTA1"sv, nullptr, "tta", losslessSilence},
});

constexpr std::size_t maxPatternBytes = std::ranges::max(formatTable, {}, [](const Format& format) {
                                            return format.pattern.size();
                                        }).pattern.size();

constexpr auto headerTable = std::to_array<HeaderFormat>({
    {"ogg", "Ogg", &oggTiming},
    {"oga", "Ogg", &oggTiming},
    {"opus", "Ogg", &oggTiming},
    {"ogx", "Ogg", &oggTiming},
    {"spx", "Ogg", &oggTiming},
    {"wma", "ASF", &asfTiming},
    {"asf", "ASF", &asfTiming},
    {"wmv", "ASF", &asfTiming},
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
