#pragma once

// Finding the last frame or block of a file that numbers them: the end of a file says how much of it is
// really there.

#include "measure/bytes/GuardedReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace velmora {

/// Hands the last bytes of `reader` from `start` on, which lies within the file, to `find(bytes, offset of
/// the first)`, first `firstBytes` of them, then four times as many until it returns a value or more than 1
/// MiB would be read. Returns what `find` did.
template <typename Find>
auto searchTail(GuardedReader& reader, std::int64_t start, std::int64_t firstBytes, Find find) {
    constexpr std::int64_t maxBytes = 1 << 20;
    std::vector<std::uint8_t> buffer;
    for (std::int64_t count = firstBytes;; count *= 4) {
        const std::int64_t from = std::max(start, reader.size() - count);
        buffer.resize(static_cast<std::size_t>(reader.size() - from));
        const std::size_t got = reader.search(from, buffer);
        auto found = find(std::span<const std::uint8_t>(buffer).first(got), from);
        if (found || from == start || count * 4 > maxBytes) {
            return found;
        }
    }
}

} // namespace velmora
