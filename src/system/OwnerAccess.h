#pragma once

// Gives the owner access to files of our own. An archive stores permissions, and its tools restore them: what
// came out of it may be a folder nobody can enter or a file nobody can read.

#include <sys/types.h>

#include <filesystem>

namespace velmora {

/// Adds `bits` to the permissions of the entry `name` in the open folder `parent` (or AT_FDCWD) where they
/// are missing. A link is left alone, and so is what it leads to. Failures are ignored.
void grantOwner(int parent, const char* name, mode_t bits);

/// Lets the owner enter every folder below `folder` and read every file in them. Links are not followed.
/// Failures are ignored; what lies deeper than a path may be long stays as it is.
void grantOwnerBelow(const std::filesystem::path& folder);

} // namespace velmora
