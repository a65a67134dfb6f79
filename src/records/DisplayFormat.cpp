#include "records/DisplayFormat.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace velmora {

namespace {

constexpr double twoTo62 = 4611686018427387904.0;
constexpr double twoTo63 = 9223372036854775808.0;

std::int64_t wholeSeconds(double seconds) {
    const double rounded = std::round(seconds);
    if (!std::isfinite(rounded) || rounded >= twoTo63 || rounded < -twoTo63) {
        std::fputs("velmora: a duration outside the range of 64-bit seconds was to be shown\n", stderr);
        std::abort();
    }
    return std::max<std::int64_t>(static_cast<std::int64_t>(rounded), 0);
}

constexpr std::int64_t secondsPerMinute = 60;
constexpr std::int64_t secondsPerHour = 3600;

std::string twoDigits(std::int64_t number) {
    const std::string text = std::to_string(number);
    return text.size() < 2 ? "0" + text : text;
}

struct Unit {
    std::string_view name;
    std::uint64_t bytes;
    int decimals;
};

constexpr std::array<Unit, 6> units = {{
    {"KB", 1'000, 0},
    {"MB", 1'000'000, 1},
    {"GB", 1'000'000'000, 2},
    {"TB", 1'000'000'000'000, 2},
    {"PB", 1'000'000'000'000'000, 2},
    {"EB", 1'000'000'000'000'000'000, 2},
}};

/// How many steps of its last decimal place a unit has.
std::uint64_t stepsPer(const Unit& unit) {
    std::uint64_t steps = 1;
    for (int decimal = 0; decimal < unit.decimals; ++decimal) {
        steps *= 10;
    }
    return steps;
}

/// `count` in steps of the unit's last decimal place, rounded half up; without overflow for any 64-bit count.
std::uint64_t inSteps(std::uint64_t count, const Unit& unit) {
    const std::uint64_t step = unit.bytes / stepsPer(unit);
    return count / step + (count % step >= step - count % step ? 1 : 0);
}

std::string withUnit(std::uint64_t steps, const Unit& unit) {
    const std::uint64_t perUnit = stepsPer(unit);
    std::string text = std::to_string(steps / perUnit);
    if (std::uint64_t rest = steps % perUnit; rest != 0) {
        std::string digits = std::to_string(rest);
        digits.insert(0, static_cast<std::size_t>(unit.decimals) - digits.size(), '0');
        digits.erase(digits.find_last_not_of('0') + 1);
        text += "." + digits;
    }
    return text + " " + std::string(unit.name);
}

} // namespace

std::string hms(double seconds) {
    const std::int64_t s = wholeSeconds(seconds);
    return twoDigits(s / secondsPerHour) + ":" + twoDigits(s % secondsPerHour / secondsPerMinute) + ":" +
           twoDigits(s % secondsPerMinute);
}

std::string longForm(double seconds) {
    const std::int64_t s = wholeSeconds(seconds);
    std::string text;
    if (s >= secondsPerHour) {
        text += std::to_string(s / secondsPerHour) + " hr  ";
    }
    if (s % secondsPerHour >= secondsPerMinute) {
        text += std::to_string(s % secondsPerHour / secondsPerMinute) + " min  ";
    }
    return text + std::to_string(s % secondsPerMinute) + " sec";
}

double displayable(double seconds) {
    return std::min(seconds, twoTo62);
}

std::string prettyBytes(std::int64_t bytes) {
    if (bytes == 0) {
        return "Zero KB";
    }
    const std::string sign = bytes < 0 ? "-" : "";
    const std::uint64_t count =
        bytes < 0 ? 0 - static_cast<std::uint64_t>(bytes) : static_cast<std::uint64_t>(bytes);
    if (count < 1000) {
        return sign + std::to_string(count) + (count == 1 ? " byte" : " bytes");
    }
    const auto* unit = units.begin();
    while (unit + 1 != units.end() && inSteps(count, *unit) >= inSteps(unit->bytes, *unit) * 1000) {
        ++unit;
    }
    return sign + withUnit(inSteps(count, *unit), *unit);
}

} // namespace velmora
