#pragma once

// Finds the audio in one dropped item: a file, a folder with everything below it, or an archive with what is
// packed in it. The file's name alone decides what it is; no file is opened here but archives, by their
// tools.

#include "core/Records.h"

#include <array>
#include <filesystem>
#include <stop_token>
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

/// Whether `extension` (lower case, without the dot) marks an audio file, an archive.
bool isAudio(std::string_view extension);
bool isArchive(std::string_view extension);

/// The deepest level at which archives are still unpacked: a dropped one is at level 0.
inline constexpr int deepestArchive = 2;

/// Appends what is found at `url` to `found`: audio files in discovery order, the extraction directory of
/// every archive unpacked, every archive that was not. `depth` is the number of archives already entered on
/// the way to `url`. Hidden names are skipped in folders, links to folders are not entered, what cannot be
/// read is left out; a path that does not exist changes nothing. Never throws for what it finds. Ends early
/// when `stop` is requested. Called on the gathering thread.
void walk(const std::filesystem::path& url, int depth, GatherResult& found, const std::stop_token& stop = {});

} // namespace velmora::Collector
