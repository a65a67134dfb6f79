#include "system/UnicodeCase.h"

#include "system/Utf8.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>

#include <algorithm>
#include <cstdint>

namespace velmora {

namespace {

using CaseMapping = void (*)(const char*, std::uint32_t, icu::StringPiece, icu::ByteSink&, icu::Edits*,
                             UErrorCode&);

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// How many bytes at the start of `text` are valid UTF-8.
std::size_t validLength(std::string_view text) {
    std::string_view rest = text;
    while (!rest.empty()) {
        std::string_view next = rest;
        if (!takeUtf8(next).character) {
            break;
        }
        rest = next;
    }
    return text.size() - rest.size();
}

std::string mapped(std::string_view text, CaseMapping mapping) {
    std::string result;
    result.reserve(text.size());
    icu::StringByteSink<std::string> sink(&result);
    while (!text.empty()) {
        const std::size_t valid = validLength(text);
        if (valid == 0) {
            result.push_back(text.front());
            text.remove_prefix(1);
            continue;
        }
        UErrorCode status = U_ZERO_ERROR;
        mapping("", 0, icu::StringPiece(text.data(), static_cast<std::int32_t>(valid)), sink, nullptr,
                status);
        text.remove_prefix(valid);
    }
    return result;
}

} // namespace

std::string lowerCased(std::string_view text) {
    if (isAscii(text)) {
        std::string result(text);
        std::ranges::transform(result, result.begin(), [](char c) {
            return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
        });
        return result;
    }
    return mapped(text, &icu::CaseMap::utf8ToLower);
}

std::string upperCased(std::string_view text) {
    if (isAscii(text)) {
        std::string result(text);
        std::ranges::transform(result, result.begin(), [](char c) {
            return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
        });
        return result;
    }
    return mapped(text, &icu::CaseMap::utf8ToUpper);
}

} // namespace velmora
