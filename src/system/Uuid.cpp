#include "system/Uuid.h"

#include <array>
#include <cstdint>
#include <random>

namespace velmora {

std::string randomUuid() {
    std::random_device device;
    std::array<std::uint8_t, 16> bytes{};
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(device());
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
