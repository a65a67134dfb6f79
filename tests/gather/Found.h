#pragma once

// What a walk found, in a form that a test can state.

#include "records/Records.h"
#include "tests/support/Files.h"

#include <string>
#include <vector>

namespace velmora::test {

/// What stands in an audio file where no one listens: more than one block of a tar archive.
inline const std::string sound(2000, 's');

/// Walks `path` as an item found inside `depth` archives.
GatherResult walked(const fs::path& path, int depth = 0);

/// The files found, sorted: relative to `folder`, or "[n]/..." for what lies in the extraction directory n.
std::vector<std::string> namesIn(const GatherResult& found, const fs::path& folder);

/// Everything below `folder` but folders, relative to it, sorted.
std::vector<std::string> filesBelow(const fs::path& folder);

/// Names that trip up what handles names carelessly, each with the extension wav: bytes that are not UTF-8,
/// a line feed, the longest name there is, characters of patterns, formats, options and remote addresses,
/// both forms of an accented letter.
std::vector<std::string> awkwardNames();

} // namespace velmora::test
