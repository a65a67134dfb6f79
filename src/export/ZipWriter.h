#pragma once

// Writes a zip archive with libzip: one top-level folder, no other entries beside it, readable everywhere.
// Compressed audio is stored as it is, samples are deflated. Names that are UTF-8 are marked as such; others
// are kept byte for byte, unmarked, as Unix tools do. Files may be of any size and number (zip64).

#include <filesystem>
#include <stop_token>
#include <string>
#include <vector>

namespace velmora {

/// Writes `folder` with the `files` in it (paths relative to it, in this order) to the new file `archive`.
/// Each file keeps its time of last modification, clamped to what a zip can state (1980 to 2107). Memory use
/// does not grow with the sizes of files.
/// Throws std::filesystem::filesystem_error with the system's reason (ECANCELED when `stop` was requested),
/// or Zipper::archiveNotWritten when libzip fails by itself; `archive` may be left unfinished then.
void writeZip(const std::filesystem::path& archive, const std::filesystem::path& folder,
              const std::vector<std::string>& files, const std::stop_token& stop = {});

} // namespace velmora
