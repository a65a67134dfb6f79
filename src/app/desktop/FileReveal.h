#pragma once

// Shows a file where the user keeps files.

#include <filesystem>

namespace velmora {

/// Opens the file manager with `file` selected. Where no file manager can be asked to, the desktop's portal
/// shows the file's folder, and where there is no portal the folder is opened like any other document.
/// Returns at once.
void revealFile(const std::filesystem::path& file);

} // namespace velmora
