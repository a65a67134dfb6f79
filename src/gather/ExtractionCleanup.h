#pragma once

// What an archive's tool may leave in an extraction directory. Each tool takes care not to write through a
// link of its own archive, but none suspects what another left: a file that is a tar archive to tar and a zip
// archive to unzip would plant a link with the first and write through it with the second. And a link that
// leads out of the directory would have a file of the user's measured, unpacked and packed.

#include <filesystem>

namespace velmora::Collector {

/// Removes everything in `directory` that is neither a folder nor a regular file with one name: links, hard
/// links, FIFOs, sockets, devices. Nothing is followed; folders that are closed to their owner are opened.
/// False when something could not be looked at or removed: then no tool may run there.
bool keepPlainFiles(const std::filesystem::path& directory);

/// Removes what is not the archive's own from `directory`: links that lead out of it, files that have another
/// name outside, FIFOs, sockets, devices. Lets the owner enter every folder and read every file. False when
/// something could not be looked at or removed: then nothing in there may be read.
bool keepOwnContent(const std::filesystem::path& directory);

/// Replaces `directory` by an empty one of mode 0700. False when that is not possible.
bool makeEmpty(const std::filesystem::path& directory);

} // namespace velmora::Collector
