#pragma once

// How a format is known by its first bytes.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace velmora {

/// True if `bytes` begin with `pattern`, in which "?" stands for any byte.
///     "RIFF????WAVE" matches the head of a WAV file
constexpr bool matches(std::span<const std::uint8_t> bytes, std::string_view pattern) {
    return bytes.size() >= pattern.size() &&
           std::ranges::equal(pattern, bytes.first(pattern.size()), [](char expected, std::uint8_t byte) {
               return expected == '?' || static_cast<std::uint8_t>(expected) == byte;
           });
}

} // namespace velmora
