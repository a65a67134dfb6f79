#pragma once

// The containers that libavformat may be asked to open, by the names that it has for its demuxers.

#include "records/FormatName.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace velmora {

/// Containers that hold their audio themselves. Left out on purpose: whatever names further files (concat,
/// hls, dash, imf, sdp, rtsp, image sequences), pictures, subtitles and text, devices, raw PCM without any
/// header.
inline constexpr auto mediaDemuxers = std::to_array<FormatName>(
    {"aa",     "aac",    "ac3",   "act",  "adx",        "aea",  "afc",  "aiff",  "aix",   "amr",
     "ape",    "apm",    "asf",   "ast",  "au",         "avi",  "avr",  "bfstm", "brstm", "caf",
     "codec2", "dsf",    "dss",   "dts",  "dtshd",      "eac3", "epaf", "flac",  "flv",   "g729",
     "hca",    "iff",    "ircam", "lvf",  "matroska",   "mlp",  "mov",  "mp3",   "mpc",   "mpc8",
     "mpeg",   "mpegts", "mtaf",  "mxf",  "nistsphere", "nut",  "ogg",  "oma",   "paf",   "pvf",
     "qcp",    "rm",     "rso",   "sbc",  "sds",        "shn",  "sln",  "sox",   "spdif", "tak",
     "truehd", "tta",    "vag",   "voc",  "vqf",        "w64",  "wav",  "wsd",   "wsvqa", "wtv",
     "wv",     "wve",    "xa",    "xwma", "loas"});

/// The first of `names`, which commas separate as libavformat separates the names of one demuxer, that is
/// one of `mediaDemuxers`; not known if none is.
inline FormatName knownDemuxer(std::string_view names) {
    while (!names.empty()) {
        const std::string_view name = names.substr(0, names.find(','));
        names.remove_prefix(std::min(name.size() + 1, names.size()));
        const auto* const found = std::ranges::find(mediaDemuxers, name, &FormatName::text);
        if (found != mediaDemuxers.end()) {
            return *found;
        }
    }
    return {};
}

} // namespace velmora
