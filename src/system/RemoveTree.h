#pragma once

// Removes whatever stands at a path, also what an archive made hard to remove: folders without permissions,
// trees deeper than a path may be long.

#include <filesystem>

namespace velmora {

/// Removes `path` with everything in it; links are removed, never followed. The owner's permissions are
/// restored on the way. What cannot be removed, at a second attempt either, stays, and everything else goes.
/// Returns whether nothing is at `path` any more.
bool removeTree(const std::filesystem::path& path) noexcept;

} // namespace velmora
