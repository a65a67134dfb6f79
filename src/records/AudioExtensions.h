#pragma once

// Which file names mean audio and which mean an archive: every list of extensions the program has. The name
// alone decides whether a file is counted; what is in it decides later how it is timed.

#include <array>
#include <string_view>

namespace velmora::Collector {

/// Extensions of audio files, lower case, without the dot.
inline constexpr std::array<std::string_view, 37> audioExts = {
    "wav", "wave", "bwf",  "aif", "aiff", "aifc", "caf", "flac", "alac", "mp3",  "mp2", "m4a", "m4b",
    "m4r", "aac",  "adts", "ogg", "oga",  "opus", "wma", "ape",  "wv",   "dsf",  "dff", "amr", "mka",
    "au",  "snd",  "ra",   "mpc", "aa",   "aax",  "3ga", "voc",  "w64",  "rf64", "sd2"};

/// Extensions of archives, lower case, without the dot.
inline constexpr std::array<std::string_view, 12> archiveExts = {"zip", "zipx", "tar", "tgz", "tbz", "tbz2",
                                                                 "txz", "gz",   "bz2", "xz",  "7z",  "rar"};

/// Extensions of audio that is not compressed (PCM, DSD): a zip archive deflates it and stores the rest.
inline constexpr std::array<std::string_view, 15> uncompressedExts = {"wav",  "wave", "bwf", "aif", "aiff",
                                                                      "aifc", "caf",  "au",  "snd", "voc",
                                                                      "w64",  "rf64", "sd2", "dsf", "dff"};

/// Whether `extension` (lower case, without the dot) marks an audio file, an archive, audio that a
/// zip archive can make smaller.
bool isAudio(std::string_view extension);
bool isArchive(std::string_view extension);
bool isUncompressed(std::string_view extension);

} // namespace velmora::Collector
