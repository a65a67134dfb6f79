#pragma once

// The directory one run of velmora-scan works in. Everything temporary lies in it, its tools' files too, so
// runs never meet each other's or the window's files, and one removal takes all of it away.

#include "system/FileDescriptor.h"
#include "system/TemporaryDirectory.h"

#include <filesystem>
#include <optional>
#include <string>

namespace velmora {

/// A new directory scan-velmora-XXXXXX (mode 0700) in the temporary directory, locked (see cli/RunLock.h).
/// TMPDIR names it while it exists. On a file system without locks it is used unlocked. Made and destroyed
/// while the program has one thread.
class PrivateDirectory {
public:
    /// Removes what dead runs left, then makes the directory. Where it cannot be made, `problem` says why,
    /// and TMPDIR names a place where nothing can be made either: nothing is ever put beside other programs'
    /// files.
    PrivateDirectory();
    PrivateDirectory(const PrivateDirectory&) = delete;
    PrivateDirectory& operator=(const PrivateDirectory&) = delete;

    /// Removes the directory with everything in it and gives TMPDIR its old value.
    ~PrivateDirectory();

    /// Only where there is no problem.
    const std::filesystem::path& path() const { return m_directory->path(); }

    /// Why there is no directory; "" where there is one.
    const std::string& problem() const { return m_problem; }

private:
    int make(const std::filesystem::path& prefix);

    FileDescriptor m_lock; // held until the directory is gone
    std::optional<TemporaryDirectory> m_directory;
    std::string m_problem;
    std::optional<std::string> m_outerTmpdir; // absent when it was not set
};

} // namespace velmora
