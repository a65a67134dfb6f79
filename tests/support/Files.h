#pragma once

// Files and folders for a test.

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

namespace fs = std::filesystem;

using Bytes = std::vector<std::uint8_t>;

/// A new empty folder below the test's own temporary directory, but not directly in it: nothing that sweeps
/// the temporary directory sees it.
fs::path freshFolder();

/// Writes `content` to `path`, making its parent folders; returns `path`.
fs::path write(const fs::path& path, std::string_view content = "");
fs::path write(const fs::path& path, const Bytes& content);

/// The whole content of `path`; a test failure if it cannot be read.
std::string read(const fs::path& path);

/// The names in `folder` that begin with `prefix`, sorted.
std::vector<std::string> namesIn(const fs::path& folder, std::string_view prefix = "");

/// The names in the temporary directory that begin with "velmora-", sorted.
std::vector<std::string> temporaryItems();

} // namespace velmora::test
