#pragma once

// Reads a whole audio file and holds what it says of itself against what is there: header, index, tag and
// name on one side; frames, their numbers, clocks and checksums on the other. Nothing is decoded.

#include "records/Finding.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stop_token>

namespace velmora {

/// Told how many more bytes of a file were read, on the thread that reads; the parts that are read twice, for
/// an end or an index that comes last, are told twice.
using ReadNote = std::function<void(std::int64_t bytes)>;

/// Checks the file at `path`. No findings for what cannot be opened or is no regular file, and for content
/// that is not recognised: measuring names those. Any thread, many at once. Ends early when `stop` is
/// requested; what was found then means nothing. Never throws but for want of memory.
Checked checkFile(const std::filesystem::path& path, const std::stop_token& stop = {},
                  const ReadNote& read = {});

} // namespace velmora
