#pragma once

// How runs of the programs tell that a private directory is in use: its run holds a lock on the directory
// itself. The lock is the open descriptor's, so it ends with the run, however that ends.

#include "system/FileDescriptor.h"

#include <filesystem>
#include <string_view>

namespace velmora {

/// Every private directory's name begins with this; six random characters follow.
inline constexpr std::string_view runPrefix = "scan-velmora-";

/// Locks the private directory at `path` for as long as the result lives. No descriptor where that fails, and
/// `errno` says why: EWOULDBLOCK when a run holds it, ESTALE when it was removed before it was locked, EPERM
/// when it is another user's, ENOLCK when its file system knows no such lock, or why it cannot be opened.
FileDescriptor lockRun(const std::filesystem::path& path);

} // namespace velmora
