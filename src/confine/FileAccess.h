#pragma once

// Which files the tool may open: the system's for reading, the user's one, and everything in the folder it
// writes to. By Landlock, the kernel's own way for a process to give up rights (man 7 landlock).

#include "confine/Layer.h"
#include "confine/Rules.h"

namespace velmora {

/// Gives up access to every file but `tool` and what `rules` names. Not offered before Linux 5.19, whose
/// Landlock would also refuse a hard link from one folder to the next within the writable one.
Layer restrictFiles(const Rules& rules, const std::filesystem::path& tool);

/// The version of the kernel's Landlock; 0 where there is none.
int fileAccessVersion();

} // namespace velmora
