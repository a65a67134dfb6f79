#pragma once

// A directory that only this user can enter and that goes with its owner.

#include <filesystem>
#include <optional>
#include <string>

namespace velmora {

/// The directory for temporary files: the one that TMPDIR names, /tmp where it is empty or not set. Absolute.
/// Whether it is there is not looked at.
std::filesystem::path systemTemporaryDirectory();

/// A new directory (mode 0700), removed at the end with everything in it.
class TemporaryDirectory {
public:
    /// Makes the directory at `path`. Absent when it cannot be made, also because something is there; `errno`
    /// then says why.
    static std::optional<TemporaryDirectory> make(std::filesystem::path path);

    /// Makes a directory whose path is `prefix` and six random characters. Absent as for `make`.
    static std::optional<TemporaryDirectory> makeUnique(const std::filesystem::path& prefix);

    TemporaryDirectory(TemporaryDirectory&& other) noexcept;
    TemporaryDirectory& operator=(TemporaryDirectory&& other) noexcept;
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory();

    const std::filesystem::path& path() const { return m_path; }

    /// The path of the directory, which from here on is the caller's to remove.
    std::filesystem::path release();

private:
    explicit TemporaryDirectory(std::filesystem::path path);

    std::filesystem::path m_path; // empty: there is nothing to remove
};

} // namespace velmora
