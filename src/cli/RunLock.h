#pragma once

// How runs of velmora-scan tell that a private directory is in use: its run holds a lock on the directory
// itself. The lock is the open descriptor's, so it ends with the run, however that ends.

#include "system/RegularFile.h"

#include <filesystem>
#include <string_view>

namespace velmora {

/// Every private directory's name begins with this; six random characters follow.
inline constexpr std::string_view runPrefix = "scan-velmora-";

/// Locks the private directory at `path` for as long as the result lives. No descriptor when a run holds it,
/// when it is not a directory of this user, or when it was removed before it was locked; `errno` is then
/// EWOULDBLOCK, EPERM or ENOENT, else that of the call that failed.
FileDescriptor lockRun(const std::filesystem::path& path);

} // namespace velmora
