#pragma once

// What a zip archive holds, read in full, without regard to names.

#include "tests/support/Files.h"

#include <cstdint>
#include <optional>
#include <set>
#include <utility>

namespace velmora::test {

/// The files of an archive: size and CRC-32.
using ZipContent = std::multiset<std::pair<std::uint64_t, std::uint32_t>>;

/// Absent when `archive` is no whole archive.
std::optional<ZipContent> contentOfZip(const fs::path& archive);

} // namespace velmora::test
