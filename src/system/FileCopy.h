#pragma once

// Copies one file as cheaply as the file system can: a shared extent where it knows reflinks, a copy inside
// the kernel where not, plain reads and writes last.

#include <filesystem>
#include <stop_token>

namespace velmora {

/// Copies the regular file `from` (links followed) to `to`, which is created (mode 0600) or overwritten,
/// with its time of last modification. Nothing is left at `to` after a failure.
/// Throws std::filesystem::filesystem_error with the system's reason: EINVAL when `from` is not a regular
/// file, ECANCELED when `stop` was requested before the end.
void copyFile(const std::filesystem::path& from, const std::filesystem::path& to,
              const std::stop_token& stop = {});

} // namespace velmora
