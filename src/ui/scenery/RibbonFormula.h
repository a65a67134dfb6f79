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

/// Ribbon `k`, from 0 to 4, in a field `height` points high at `time`. `intensity` counts as 0.18 at least.
Ribbon ribbon(int k, double height, double intensity, double time);

/// How far a ribbon may swing at the share `u`, from 0 to 1, of the width: nothing at both ends.
double ribbonEnvelope(double u);

/// The height above 0 of `ribbon` at the share `u` of the width, in a field `height` points high.
double ribbonY(const Ribbon& ribbon, double u, double height);

/// The envelope at x = 0, 2.5, 5, ... while x is at most `width`; a width below 1 counts as 1 in the shares.
/// All ribbons of a field have the same.
std::vector<double> ribbonEnvelopes(double width);

/// `ribbonY` at the places of `envelopes`, which are those of `width`.
std::vector<double> ribbonPath(const Ribbon& ribbon, const std::vector<double>& envelopes, double width,
                               double height);

} // namespace velmora
