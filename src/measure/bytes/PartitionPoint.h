#pragma once

#include <cstdint>

namespace velmora {

/// How many of the integers from 0 to `count` less one `isBefore` holds for, which must hold for the first
/// ones and for none of the rest: std::ranges::partition_point for entries that are read from a file. Asks
/// about the logarithm of `count`.
template <typename Predicate>
std::int64_t partitionPoint(std::int64_t count, Predicate isBefore) {
    std::int64_t first = 0;
    while (count > 0) {
        const std::int64_t half = count / 2;
        if (isBefore(first + half)) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return first;
}

} // namespace velmora
