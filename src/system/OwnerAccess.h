#pragma once

// Gives the owner access to files of our own. An archive stores permissions, and its tools restore them: what
// came out of it may be a folder nobody can enter or a file nobody can read.

#include "system/FileDescriptor.h"

#include <sys/types.h>

namespace velmora {

/// Adds `bits` to the permissions of the entry `name` in the open folder `parent` (or AT_FDCWD) where they
/// are missing. A link is left alone, and so is what it leads to. Failures are ignored.
void grantOwner(int parent, const char* name, mode_t bits);

/// Opens the folder `name` in the open folder `parent` (or AT_FDCWD), which its owner may list, enter and
/// change from then on. None when it cannot be opened, or is no folder: a link to one is none; `errno` then
/// says why.
FileDescriptor openOwnFolder(int parent, const char* name);

} // namespace velmora
