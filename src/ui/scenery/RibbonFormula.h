#pragma once

// The moving ribbons as formulas: where each runs and how strong it is. Lengths are points, times seconds.

#include <vector>

namespace velmora {

inline constexpr int ribbonCount = 5;
inline constexpr double ribbonStep = 2.5;  ///< between the points of a path
inline constexpr double ribbonWidth = 1.3; ///< of the stroke
inline constexpr double ribbonGlowRadius = 14;

/// The strokes' colour runs from violet at the left edge over indigo in the middle back to violet.
struct Ribbon {
    double amplitude = 0;
    double frequency = 0; ///< periods across the width
    double phase = 0;     ///< radians
    double violetOpacity = 0;
    double indigoOpacity = 0;
};

/// Ribbon `k`, from 0 to 4, in a field `height` points high at `time`. An `intensity` below 0.18 counts as
/// 0.18.
Ribbon ribbon(int k, double height, double intensity, double time);

/// By how much the amplitude of every ribbon is multiplied, from 0 at both ends to 1 in the middle, at x = 0,
/// 2.5, 5, ... up to `width`. A width below 1 counts as 1.
std::vector<double> ribbonEnvelopes(double width);

/// The y of `ribbon` in a field of `width` and `height`, at the same x as `envelopes`, which are those of
/// `width`. y grows downwards.
std::vector<double> ribbonPath(const Ribbon& ribbon, const std::vector<double>& envelopes, double width,
                               double height);

} // namespace velmora
