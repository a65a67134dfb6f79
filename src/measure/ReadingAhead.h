#pragma once

// What measuring a file will most likely read, asked for before it is: at the head what tells the format, and
// at the end what some formats keep there. Nothing here changes what is measured, or fails.

#include "system/RegularFile.h"

#include <filesystem>

namespace velmora::Collector {

/// Whether it pays to ask for files like the one at `path` ahead: it lies on a rotating disk, and its head is
/// not in memory. Opens the file. Any thread.
bool paysToReadAhead(const std::filesystem::path& path);

/// Asks for the head and the end of the file at `path` and waits for neither, only for its inode. What is no
/// regular file is left alone. Any thread.
void readAhead(const std::filesystem::path& path);

/// On a network, asks for the end of `file`, which has the name `path`, while its head is read: one round
/// trip less.
void askForEnd(const RegularFile& file, const std::filesystem::path& path);

} // namespace velmora::Collector
