#include "system/UnicodeCase.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

namespace velmora {

namespace {

using CaseMapping = void (*)(const char*, std::uint32_t, icu::StringPiece, icu::ByteSink&, icu::Edits*,
                             UErrorCode&);

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// The end of the run of valid UTF-8 that begins at `start`; `start` itself if the first byte is not valid.
std::int32_t validRunEnd(std::string_view text, std::int32_t start) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto size = static_cast<std::int32_t>(text.size());
    std::int32_t end = start;
    while (end < size) {
        std::int32_t next = end;
        UChar32 character = 0;
        U8_NEXT(bytes, next, size, character);
        if (character < 0) {
            break;
        }
        end = next;
    }
    return end;
}

std::string mapped(std::string_view text, CaseMapping mapping) {
    std::string result;
    result.reserve(text.size());
    icu::StringByteSink<std::string> sink(&result);
    std::int32_t position = 0;
    while (position < static_cast<std::int32_t>(text.size())) {
        const std::int32_t end = validRunEnd(text, position);
        if (end == position) {
            result.push_back(text[static_cast<std::size_t>(position++)]);
            continue;
        }
        UErrorCode status = U_ZERO_ERROR;
        mapping("", 0, icu::StringPiece(text.data() + position, end - position), sink, nullptr, status);
        position = end;
    }
    return result;
}

} // namespace

std::string lowerCased(std::string_view text) {
    if (isAscii(text)) {
        std::string result(text);
        std::transform(result.begin(), result.end(), result.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
        return result;
    }
    return mapped(text, &icu::CaseMap::utf8ToLower);
}

std::string upperCased(std::string_view text) {
    if (isAscii(text)) {
        std::string result(text);
        std::transform(result.begin(), result.end(), result.begin(),
                       [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; });
        return result;
    }
    return mapped(text, &icu::CaseMap::utf8ToUpper);
}

} // namespace velmora
