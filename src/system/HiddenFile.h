#pragma once

// A file of ours in a folder of the user's, where it becomes another once it is whole. Its name is hidden,
// and it is locked as long as its program lives (see system/RunLock.h): what a killed one left is known by
// that.

#include "system/FileDescriptor.h"

#include <filesystem>

namespace velmora {

/// An empty file of mode 0600, ".velmora-" and a UUID. At the end it is removed if it is still there.
class HiddenFile {
public:
    /// Makes the file in `folder`. Throws std::system_error when it cannot be made.
    explicit HiddenFile(const std::filesystem::path& folder);
    HiddenFile(const HiddenFile&) = delete;
    HiddenFile& operator=(const HiddenFile&) = delete;
    ~HiddenFile();

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
    FileDescriptor m_lock; // none where the file system has no locks, or gives every file another owner
};

/// Removes the hidden files of this user in `folder` that belong to no living program. What cannot be locked
/// or removed is passed over.
void removeDeadHiddenFiles(const std::filesystem::path& folder);

} // namespace velmora
