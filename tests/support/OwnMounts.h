#pragma once

// Surroundings that a program does not expect: small disks, other tools. Mounts are made in a user namespace,
// so they need no special rights and nobody else sees them.

#include "tests/support/Files.h"

#include <cstddef>
#include <functional>
#include <string_view>

namespace velmora::test {

/// Runs `body` in a forked process that may mount.
void inOwnMounts(const std::function<void()>& body);

/// For `inOwnMounts`: makes `folder` a file system of its own that holds so many bytes and files (0: any
/// number).
void mountSmallDisk(const fs::path& folder, std::size_t bytes, std::size_t files = 0);

/// For `inOwnMounts`: makes `folder` one that cannot be written.
void mountReadOnly(const fs::path& folder);

/// For `inOwnMounts`: puts a shell script in the place of the program `tool`.
void replaceTool(const fs::path& tool, std::string_view script);

/// For `inOwnMounts`: leaves nothing executable at `tool`.
void hideTool(const fs::path& tool);

} // namespace velmora::test
