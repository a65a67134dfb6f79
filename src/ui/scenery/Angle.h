#pragma once

// Angles of the moving scenery, in radians.

#include <cmath>
#include <numbers>

namespace velmora {

inline constexpr double fullTurn = 2 * std::numbers::pi;

/// The equivalent angle from -pi to pi. Its sine is computed ten times as fast as that of an angle as large
/// as a time in seconds makes it.
inline double smallAngle(double angle) {
    return std::remainder(angle, fullTurn);
}

} // namespace velmora
