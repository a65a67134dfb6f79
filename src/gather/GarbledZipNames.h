#pragma once

// Tells the zip archives whose names unzip would garble. It takes names for code page 437 when an archive
// says that it was made under DOS or Windows, as those of Java programs do, too, even where the archive says
// that they are UTF-8: "Füße" becomes "F+++?e".

#include <filesystem>

namespace velmora::Collector {

/// Whether unzip would garble a name among the first thousands in the archive at `path`. False for what is
/// not a zip archive or cannot be read. Reads at most 1.1 MB.
bool unzipGarblesNames(const std::filesystem::path& path);

} // namespace velmora::Collector
