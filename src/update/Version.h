#pragma once

// Compares version texts such as "1.10" and "1.9".

#include <string_view>

namespace velmora::UpdateChecker {

/// Whether version `a` is strictly newer than `b`. Numbers between dots are compared one by one, missing ones
/// count as 0, and so does a piece that is no whole number:
///   1.10 than 1.9 -> true;  1.2.0 than 1.2 -> false;  1.x than 1.0 -> false
bool isNewer(std::string_view a, std::string_view b);

} // namespace velmora::UpdateChecker
