#pragma once

// What a folder holds, with everything that a change would show in.

#include "tests/support/Files.h"

#include <map>
#include <string>

namespace velmora::test {

/// By path: kind, permissions, owner, number of names, times of change and the content or the link's target.
using Snapshot = std::map<std::string, std::string>;

/// Everything in `folder` and the folder itself. Links are not followed.
Snapshot snapshotOf(const fs::path& folder);

} // namespace velmora::test
