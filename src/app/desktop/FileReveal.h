#pragma once

// Shows a file in the file manager.

#include <filesystem>

namespace velmora {

/// Opens the file manager with `file` selected. Without a file manager on the session bus, the desktop's
/// portal shows the file's folder; without a portal, the folder is opened like any other document.
/// Returns at once.
void revealFile(const std::filesystem::path& file);

} // namespace velmora
