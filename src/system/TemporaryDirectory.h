#pragma once

// Where temporary items are made, and directories that only this user can enter and that go with their owner.

#include <filesystem>
#include <optional>
#include <string>

namespace velmora {

/// The directory for all temporary items, absolute: the one that was set, else the one that TMPDIR names,
/// else /tmp. An empty TMPDIR counts as none. Need not be there: what cannot be made in it tells why. Any
/// thread.
std::filesystem::path temporaryDirectory();

/// Makes `directory` the one for all temporary items; an empty path takes that back. The environment stays as
/// it is: other programs that are started from here live longer. Not while another thread runs.
void setTemporaryDirectory(const std::filesystem::path& directory);

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
