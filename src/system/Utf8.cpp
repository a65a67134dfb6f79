#include "system/Utf8.h"

#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>

namespace velmora {

Utf8Part takeUtf8(std::string_view& text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::size_t length = 0;
    UChar32 character = 0;
    U8_NEXT(bytes, length, text.size(), character);
    const bool isValid = character >= 0;
    const Utf8Part part{text.substr(0, isValid ? length : 1), std::nullopt};
    text.remove_prefix(part.bytes.size());
    return isValid ? Utf8Part{part.bytes, static_cast<char32_t>(character)} : part;
}

} // namespace velmora
