#pragma once

// Thresholds for dithering: the fraction of a channel becomes a pattern of two neighbouring steps. Without
// it, soft gradients in dark colours show bands. The pattern is the same in every frame and on every run.

#include <array>

namespace velmora {

/// Sixteenths by row and column of the pixel, each modulo 4; every value from 0 to 15 occurs once.
inline constexpr std::array<std::array<int, 4>, 4> ditherSixteenths = {{
    {0, 8, 2, 10},
    {12, 4, 14, 6},
    {3, 11, 1, 9},
    {15, 7, 13, 5},
}};

} // namespace velmora
