#pragma once

// Takes a text in UTF-8 apart where it may hold other bytes, too: names on Linux are bytes.

#include <optional>
#include <string_view>

namespace velmora {

struct Utf8Part {
    std::string_view bytes;
    std::optional<char32_t> character; ///< absent: `bytes` is one byte that belongs to no valid character
};

/// Removes the first character, or the first invalid byte, from `text`, which is not empty. Overlong forms,
/// surrogates and values above U+10FFFF are invalid. `bytes` points into `text`'s memory.
Utf8Part takeUtf8(std::string_view& text);

} // namespace velmora
