#include "system/Uuid.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <string_view>
#include <system_error>

namespace velmora {

std::string randomUuid() {
    std::array<std::uint8_t, 16> bytes{};
    if (::getentropy(bytes.data(), bytes.size()) != 0) {
        throw std::system_error(errno, std::generic_category(), "no random bytes");
    }
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40); // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80); // variant of RFC 4122

    constexpr std::string_view hexadecimal = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text.push_back('-');
        }
        text.push_back(hexadecimal[bytes[i] >> 4]);
        text.push_back(hexadecimal[bytes[i] & 0x0F]);
    }
    return text;
}

} // namespace velmora
