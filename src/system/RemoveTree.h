#pragma once

// Removes whatever stands at a path, also what an archive made hard to remove: folders without permissions,
// trees deeper than a path may be long.

#include <filesystem>

namespace velmora {

/// Removes `path` with everything in it; links are removed, never followed. The owner's permissions are
/// restored on the way. Failures are ignored: what cannot be removed stays. Nothing there is no failure.
void removeTree(const std::filesystem::path& path) noexcept;

} // namespace velmora
