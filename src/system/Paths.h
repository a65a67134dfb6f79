#pragma once

// A list of files and folders, as every stage hands it to the next.

#include <filesystem>
#include <vector>

namespace velmora {

/// Paths in bytes, in an order that means something to whoever made the list.
using Paths = std::vector<std::filesystem::path>;

} // namespace velmora
