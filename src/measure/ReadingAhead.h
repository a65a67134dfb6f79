#pragma once

// What measuring a file will most likely read, asked for before it is: at the head what tells the format, and
// at the end what some formats keep there. Nothing here changes what is measured, or fails.

#include "measure/WorthAsking.h"
#include "system/RegularFile.h"

#include <filesystem>

namespace velmora::Collector {

/// What it pays to ask for of files like the one at `path`: content where it lies on a rotating disk and its
/// head is not in memory, names where it lies on a network. Opens the file. Any thread.
WorthAsking worthAskingFor(const std::filesystem::path& path);

/// Asks for the head and the end of the file at `path` and waits for neither, only for its inode. What is no
/// regular file is left alone. Any thread.
void readAhead(const std::filesystem::path& path);

/// On a network, asks for the end of `file`, which has the name `path`, while its head is read: one round
/// trip less.
void askForEnd(const RegularFile& file, const std::filesystem::path& path);

} // namespace velmora::Collector
