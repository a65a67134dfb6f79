#pragma once

// Looks at the programs that run on this machine.

#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

/// The names of those that were started with a temporary directory whose path begins with `prefix`.
std::vector<std::string> programsWorkingIn(std::string_view prefix);

} // namespace velmora::test
