#pragma once

// Moves a file into the place of another in one step, wherever that is: whoever looks there finds the old
// file or the new one, whole.

#include <filesystem>
#include <stop_token>

namespace velmora {

/// Moves the regular file `from` to `to`, replacing what is there; a link at `to` is replaced itself. Where
/// it cannot be moved, as to another file system, it is copied, under a hidden name beside `to`, and `from`
/// stays; such a copy that a killed program left there is removed first. Throws
/// std::filesystem::filesystem_error that names `to`; what stood there is unchanged then, and nothing new is
/// beside it. `stop` ends a copy with ECANCELED.
void moveReplacing(const std::filesystem::path& from, const std::filesystem::path& to,
                   const std::stop_token& stop = {});

} // namespace velmora
