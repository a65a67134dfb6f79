#pragma once

// Angles of the moving scenery, in radians.

#include <cmath>
#include <numbers>

namespace velmora {

inline constexpr double fullTurn = 2 * std::numbers::pi;

/// The same angle, at most half a turn from zero: its sine costs a tenth of that of an angle that years of
/// seconds make.
inline double smallAngle(double angle) {
    return std::remainder(angle, fullTurn);
}

} // namespace velmora
