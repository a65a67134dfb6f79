#pragma once

// Clears away what a run that was killed could not: its private directory, and the tools it had started,
// which would go on filling it.

#include <filesystem>

namespace velmora {

/// Removes every private directory in `parent` that belongs to this user and to no living run. Tools at work
/// in it are killed first. What cannot be locked or removed is passed over.
void removeDeadRuns(const std::filesystem::path& parent);

/// Kills the tools at work in the private directory `directory`, waits for their end, and removes the
/// directory.
void removeWithTools(const std::filesystem::path& directory);

} // namespace velmora
