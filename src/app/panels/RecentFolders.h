#pragma once

// The folders from which something was chosen last, or into which something was saved: kept with the user's
// settings.

#include "system/Paths.h"

namespace velmora {

/// The last one first, at most five.
Paths recentFolders();

/// Makes `folder` the last one.
void rememberFolder(const std::filesystem::path& folder);

} // namespace velmora
