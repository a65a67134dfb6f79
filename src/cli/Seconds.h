#pragma once

// How a length is written for scripts.

#include <string>

namespace velmora {

/// `seconds` in full, with three decimals after a dot in every locale: 3725.4567 -> "3725.457".
std::string threeDecimals(double seconds);

} // namespace velmora
