#include "update/Version.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <vector>

namespace velmora::UpdateChecker {

namespace {

/// The whole of `piece` as a number with an optional sign; 0 if it is none.
std::int64_t number(std::string_view piece) {
    if (piece.starts_with('+') && !piece.substr(1).starts_with('-')) {
        piece.remove_prefix(1);
    }
    std::int64_t value = 0;
    const char* end = piece.data() + piece.size();
    const auto [parsed, error] = std::from_chars(piece.data(), end, value);
    return error == std::errc() && parsed == end ? value : 0;
}

/// The numbers between the dots; nothing between two dots is no number.
std::vector<std::int64_t> numbers(std::string_view version) {
    std::vector<std::int64_t> result;
    while (!version.empty()) {
        const std::string_view piece = version.substr(0, version.find('.'));
        version.remove_prefix(piece.size() < version.size() ? piece.size() + 1 : piece.size());
        if (!piece.empty()) {
            result.push_back(number(piece));
        }
    }
    return result;
}

} // namespace

bool isNewer(std::string_view a, std::string_view b) {
    std::vector<std::int64_t> ours = numbers(a);
    std::vector<std::int64_t> theirs = numbers(b);
    const std::size_t length = std::max(ours.size(), theirs.size());
    ours.resize(length);
    theirs.resize(length);
    return ours > theirs;
}

} // namespace velmora::UpdateChecker
