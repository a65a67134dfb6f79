#pragma once

// The row of moving bars as formulas. Lengths are points, times seconds.

#include <vector>

namespace velmora {

inline constexpr double barPitch = 7; ///< from one bar's left edge to the next one's
inline constexpr double barWidth = 3;
inline constexpr double barRadius = 1.5;

struct Bar {
    double x = 0;       ///< of its left edge; its lower edge is that of the strip
    double height = 0;  ///< 2 or more
    double blend = 0;   ///< its colour: 0 is violet, 1 is indigo
    double opacity = 0; ///< from 0.3 to 0.85
};

/// The room to the right of the last bar in a strip of that width; all of it where there is no bar.
double roomAfterBars(double width);

/// The bars of a strip at `time`, from left to right; none in a strip narrower than 7 points. An
/// `intensity` below 0.16 counts as 0.16.
std::vector<Bar> spectrumBars(double width, double height, double intensity, double time);

} // namespace velmora
