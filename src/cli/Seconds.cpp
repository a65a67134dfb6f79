#include "cli/Seconds.h"

#include <array>
#include <charconv>
#include <limits>

namespace velmora {

std::string threeDecimals(double seconds) {
    constexpr int decimals = 3;
    std::array<char, std::numeric_limits<double>::max_exponent10 + decimals + 4> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), seconds,
                                      std::chars_format::fixed, decimals);
    return {buffer.data(), result.ptr};
}

} // namespace velmora
