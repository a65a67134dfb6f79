#pragma once

// How runs of the programs tell that a private directory, or another temporary item outside it, is in use:
// its run holds a lock on the item itself. The lock is the open descriptor's, so it ends with the run,
// however that ends.

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

/// As `lockRun`, for the regular file at `path`.
FileDescriptor lockFile(const std::filesystem::path& path);

/// Whether a lock failed with `error` because another run took the item for a dead run's, between its making
/// and its locking: another one is to be made.
bool wasTaken(int error);

} // namespace velmora
