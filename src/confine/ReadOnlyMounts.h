#pragma once

// Makes every file system read-only for the tool but the one folder it writes to. What no other layer holds
// is held here: permissions, owners and times of what lies elsewhere.

#include "confine/Layer.h"

#include <filesystem>

namespace velmora {

/// Mounts everything read-only for this process, `writable` (empty: none) excepted. To be called while there
/// is one thread, before the other layers, which forbid it. Not offered before Linux 5.12, or where the user
/// may not have a user namespace.
Layer mountReadOnly(const std::filesystem::path& writable);

} // namespace velmora
