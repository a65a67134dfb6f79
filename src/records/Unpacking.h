#pragma once

// How gathering says what takes long.

#include <filesystem>
#include <functional>

namespace velmora {

/// Told of each archive before it is unpacked, and of an empty path afterwards. Called on the gathering
/// thread.
using Unpacking = std::function<void(const std::filesystem::path& archive)>;

} // namespace velmora
