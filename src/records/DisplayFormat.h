#pragma once

// How durations and sizes are written for people. Rounding has its one place here.

#include <cstdint>
#include <string>

namespace velmora {

/// The clock form of a duration in seconds, rounded to the nearest second, halves up: 3725.4 -> "01:02:05",
/// 360000 -> "100:00:00". A negative duration reads "00:00:00". Ends the program when `seconds` is not finite
/// or its rounded value does not fit 64 bits: see `displayable`.
std::string hms(double seconds);

/// The worded form of a duration in seconds, parted by double blanks: 3725.4 -> "1 hr  2 min  5 sec",
/// 3600 -> "1 hr  0 sec". Rounds, clamps and ends the program as `hms` does.
std::string longForm(double seconds);

/// `seconds` clamped to what `hms` and `longForm` can show, at most 2^62: a hostile file can state any
/// length.
double displayable(double seconds);

/// A byte count in decimal units: 0 -> "Zero KB", 1 -> "1 byte", 999 -> "999 bytes", 1500000 -> "1.5 MB",
/// 1234567890 -> "1.23 GB". No decimals up to KB, at most one for MB and two above; trailing zeros are left
/// out. What rounds up to 1000 of a unit is 1 of the next.
std::string prettyBytes(std::int64_t bytes);

} // namespace velmora
