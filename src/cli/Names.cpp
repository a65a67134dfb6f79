#include "cli/Names.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdint>

namespace velmora {

namespace {

/// Whether a terminal shows `character` and does nothing else. A negative one stands for bytes that are not
/// UTF-8.
bool isHarmless(UChar32 character) {
    if (character < 0) {
        return false;
    }
    const int category = u_charType(character);
    return category != U_CONTROL_CHAR && category != U_LINE_SEPARATOR && category != U_PARAGRAPH_SEPARATOR &&
           u_hasBinaryProperty(character, UCHAR_BIDI_CONTROL) == 0;
}

std::string hexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        text += {'\\', 'x', digits[byte >> 4], digits[byte & 0x0F]};
    }
    return text;
}

} // namespace

std::string fieldName(std::string_view name) {
    std::string text;
    text.reserve(name.size());
    for (const char c : name) {
        switch (c) {
        case '\n':
            text += "\\n";
            break;
        case '\t':
            text += "\\t";
            break;
        case '\\':
            text += "\\\\";
            break;
        default:
            text += c;
        }
    }
    return text;
}

std::string terminalText(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::string result;
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = start;
        UChar32 character = 0;
        U8_NEXT(bytes, end, text.size(), character);
        const std::string_view part = text.substr(start, end - start);
        if (character == '\\') {
            result += "\\\\";
        } else {
            result += isHarmless(character) ? std::string(part) : hexadecimal(part);
        }
        start = end;
    }
    return result;
}

std::string quotedName(std::string_view name) {
    return "'" + terminalText(name) + "'";
}

} // namespace velmora
