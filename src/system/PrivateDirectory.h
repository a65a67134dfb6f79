#pragma once

// The directory one run of a program works in. Everything temporary lies in it, its tools' files too, so runs
// never meet each other's files or a user's, and one removal takes all of it away.

#include "system/FileDescriptor.h"
#include "system/TemporaryDirectory.h"

#include <filesystem>
#include <optional>
#include <system_error>

namespace velmora {

/// A new directory scan-velmora-XXXXXX (mode 0700) in the temporary directory, locked where its file system
/// has locks (see system/RunLock.h). It is the directory for temporary items while it exists. Made and
/// destroyed while the program has one thread.
class PrivateDirectory {
public:
    /// Removes what dead runs left, then makes the directory. Where that fails, nothing temporary can be
    /// made.
    PrivateDirectory();
    PrivateDirectory(const PrivateDirectory&) = delete;
    PrivateDirectory& operator=(const PrivateDirectory&) = delete;

    /// Removes the directory as `remove` does.
    ~PrivateDirectory();

    /// Removes the directory with everything in it. False when something of it stays, which the next run
    /// removes.
    bool remove();

    /// The directory of this program; empty where it has none. Not while one is made or destroyed.
    static const std::filesystem::path& present();

    /// Why there is no directory; no error when there is one.
    std::error_code failure() const { return m_failure; }

    /// The temporary directory it lies in, or was to lie in.
    const std::filesystem::path& parent() const { return m_parent; }

private:
    /// 0, or the errno of the failure.
    int make();

    std::filesystem::path m_parent;
    FileDescriptor m_lock; // held until the directory is gone; none where there are no locks
    std::optional<TemporaryDirectory> m_directory;
    std::error_code m_failure;
};

} // namespace velmora
