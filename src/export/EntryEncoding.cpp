#include "export/EntryEncoding.h"

#include <unicode/utf8.h>

#include <cstdint>

namespace velmora {

namespace {

constexpr UChar32 notUtf8 = -1;

/// The character that begins at `position`, or `notUtf8`. `position` is moved behind it, if it is one.
UChar32 nextCharacter(std::string_view text, std::int32_t& position) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::int32_t next = position;
    UChar32 character = 0;
    U8_NEXT(bytes, next, static_cast<std::int32_t>(text.size()), character);
    if (character < 0) {
        return notUtf8;
    }
    position = next;
    return character;
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
    bool isMarkable = true; // UTF-8 without the control characters that libzip refuses in marked names
    for (std::int32_t position = 0; position < static_cast<std::int32_t>(name.size());) {
        const auto start = static_cast<std::size_t>(position);
        const UChar32 character = nextCharacter(name, position);
        if (character != notUtf8) {
            isMarkable = isMarkable &&
                         (character >= ' ' || character == '\t' || character == '\n' || character == '\r');
            result.text += name.substr(start, static_cast<std::size_t>(position) - start);
        } else if (const std::size_t length = lookAlikeLength(name.substr(start))) {
            appendEscaped(result.text, name.substr(start, length));
            position += static_cast<std::int32_t>(length);
        } else {
            isMarkable = false;
            result.text += name[start];
            ++position;
        }
    }
    result.encoding = isMarkable ? ZIP_FL_ENC_UTF_8 : ZIP_FL_ENC_GUESS;
    return result;
}

} // namespace velmora
