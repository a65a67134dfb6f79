#pragma once

// The system calls that no tool may make.

#include "tests/support/Files.h"

#include <string>
#include <vector>

namespace velmora::test {

/// Expressions as `Wall::python` takes them, each of which makes such a call. `here` is the number of a
/// process that is none of the tool's, `out` a folder that it may write to.
std::vector<std::string> forbiddenCalls(const std::string& here, const fs::path& out);

} // namespace velmora::test
