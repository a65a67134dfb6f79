#include "system/Names.h"

#include "system/Utf8.h"

#include <unicode/uchar.h>

#include <cstdint>

namespace velmora {

namespace {

/// Whether a terminal shows `character` and does nothing else.
bool isHarmless(char32_t character) {
    const auto code = static_cast<UChar32>(character);
    const int category = u_charType(code);
    return category != U_CONTROL_CHAR && category != U_LINE_SEPARATOR && category != U_PARAGRAPH_SEPARATOR &&
           u_hasBinaryProperty(code, UCHAR_BIDI_CONTROL) == 0;
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
    if (name.find_first_of("\n\t\\") == std::string_view::npos) {
        return std::string(name);
    }
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
    std::string result;
    while (!text.empty()) {
        const Utf8Part part = takeUtf8(text);
        if (part.character == U'\\') {
            result += "\\\\";
        } else if (part.character && isHarmless(*part.character)) {
            result += part.bytes;
        } else {
            result += hexadecimal(part.bytes);
        }
    }
    return result;
}

std::string terminalLines(std::string_view text) {
    constexpr std::u32string_view layout = U"\n\t";
    std::string result;
    while (!text.empty()) {
        const Utf8Part part = takeUtf8(text);
        const bool isLineEnd = part.character == U'\r' && text.starts_with('\n');
        const bool stays = part.character && (layout.find(*part.character) != std::u32string_view::npos ||
                                              isLineEnd || isHarmless(*part.character));
        result += stays ? std::string(part.bytes) : hexadecimal(part.bytes);
    }
    return result;
}

std::string quotedName(std::string_view name) {
    return "'" + terminalText(name) + "'";
}

} // namespace velmora
