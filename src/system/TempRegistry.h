#pragma once

// Keeps account of the temporary items the program makes, so that none outlives its use: a scan's extraction
// directories are released when the next scan starts or the program ends, leftovers of a crash at the next
// start.

#include "system/Paths.h"

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::TempRegistry {

/// Every temporary item's name begins with this.
inline constexpr std::string_view prefix = "velmora-";

/// An absolute path in the temporary directory that nothing has yet: `prefix`, `kind`, a fresh UUID. `kind`
/// is "" for an extraction directory, "src-" for a working copy, "zip-" for a staging directory.
std::filesystem::path freshPath(std::string_view kind);

/// Whether `folder` is the directory for temporary items, under whatever name.
bool isTemporaryDirectory(const std::filesystem::path& folder);

/// Registers `directories` for the next release. Any thread.
void add(const Paths& directories);

/// Deletes every registered directory and forgets it. What cannot be deleted is passed over. Any thread; the
/// registry is not locked while files are deleted.
void releaseAll();

/// Forgets every registered directory. What it returns deletes them, and is to be called once, on any thread;
/// empty when there are none. Any thread.
[[nodiscard]] std::function<void()> release();

/// Blocks until all that was released is deleted, and so has made room. Any thread but the one that is to
/// delete it.
void awaitDeletions();

/// Deletes everything in the temporary directory whose name begins with `prefix`, whoever made it and
/// whenever.
void sweepStale();

} // namespace velmora::TempRegistry
