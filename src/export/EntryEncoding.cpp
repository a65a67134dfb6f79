#include "export/EntryEncoding.h"

#include "system/Utf8.h"

#include <cstdint>

namespace velmora {

namespace {

/// Whether libzip takes `character` in a name that is marked as UTF-8: it refuses most control characters.
bool isMarkable(char32_t character) {
    return character >= U' ' || character == U'\t' || character == U'\n' || character == U'\r';
}

/// How many bytes at the start of `text` look like a character of UTF-8: a lead byte for two to four bytes
/// and its continuation bytes. 0 if they do not.
std::size_t lookAlikeLength(std::string_view text) {
    const auto lead = static_cast<std::uint8_t>(text.front());
    const std::size_t length = (lead & 0xE0) == 0xC0   ? 2
                               : (lead & 0xF0) == 0xE0 ? 3
                               : (lead & 0xF8) == 0xF0 ? 4
                                                       : 0;
    for (std::size_t i = 1; i < length; ++i) {
        if (i == text.size() || (static_cast<std::uint8_t>(text[i]) & 0xC0) != 0x80) {
            return 0;
        }
    }
    return length;
}

void appendEscaped(std::string& text, std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        text += {'%', digits[byte >> 4], digits[byte & 0xF]};
    }
}

} // namespace

EncodedName encodedName(std::string_view name) {
    EncodedName result;
    bool allMarkable = true;
    while (!name.empty()) {
        const std::string_view here = name;
        const Utf8Part part = takeUtf8(name);
        if (part.character) {
            allMarkable = allMarkable && isMarkable(*part.character);
            result.text += part.bytes;
        } else if (const std::size_t length = lookAlikeLength(here)) {
            appendEscaped(result.text, here.substr(0, length));
            name = here.substr(length);
        } else {
            allMarkable = false;
            result.text += part.bytes;
        }
    }
    result.encoding = allMarkable ? ZIP_FL_ENC_UTF_8 : ZIP_FL_ENC_GUESS;
    return result;
}

} // namespace velmora
