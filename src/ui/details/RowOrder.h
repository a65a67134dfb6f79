#pragma once

// Which rows of a list are shown, and in which order.

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace velmora {

class Rows;

struct RowOrder {
    int column = -1; ///< -1: the order of the scan
    bool descending = false;
    std::string search = {}; ///< UTF-8; only rows whose name holds it are shown, whatever its case

    bool operator==(const RowOrder&) const = default;
};

/// Rows by their number. 300,000 of them are four bytes each.
using RowNumbers = std::vector<std::uint32_t>;

/// The rows that are shown, in order; rows that are equal stay in the order of the scan. Names and words
/// stand as a file manager orders them. Absent when it was stopped.
std::optional<RowNumbers> ordered(const Rows& rows, const RowOrder& order, const std::stop_token& stop);

} // namespace velmora
