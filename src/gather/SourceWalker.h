#pragma once

// Finds the audio in one dropped item: a file, a folder with everything below it, or an archive with what is
// packed in it. The file's name alone decides what it is; no file is opened here but archives, by their
// tools.

#include "records/Records.h"
#include "records/Unpacking.h"

#include <filesystem>
#include <stop_token>

namespace velmora::Collector {

/// The deepest level at which archives are still unpacked: a dropped one is at level 0.
inline constexpr int maxArchiveDepth = 2;

/// Appends what is found at `path` to `found`: audio files in discovery order, the extraction directory of
/// every archive unpacked, every archive that was not, every folder that could not be listed. `depth` is the
/// number of archives already entered on the way to `path`. Hidden names are skipped in folders, and so are
/// the program's own temporary items; links to folders are not entered, but classified by their names as
/// every other link; what cannot be read is left out; a path that does not exist changes nothing. Never
/// throws for what it finds. Ends early when `stop` is requested. Called on the gathering thread.
///
/// While an archive is unpacked the system reads the next one into its cache. `next` is what is walked
/// afterwards, for the case that it is one; empty when nothing is.
void walk(const std::filesystem::path& path, int depth, GatherResult& found, const std::stop_token& stop = {},
          const Unpacking& unpacking = {}, const std::filesystem::path& next = {});

} // namespace velmora::Collector
