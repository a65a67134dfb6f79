#pragma once

// Pictures of the file panel.

#include "tests/staged/Stage.h"

#include <map>
#include <string>

namespace velmora::test {

/// `result` is the state of the window under a panel that asks where to save.
std::map<std::string, Page> panelPages(const ScanState& result);

} // namespace velmora::test
