#pragma once

// The path of one of many files. A std::filesystem::path holds each of its components as a path of its own,
// some 500 bytes for one of six components; here the files of a folder share its bytes, however long, and
// each has its own name.

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora {

/// Bytes, as they were found. Converts from and to a path where one is needed.
class FilePath {
public:
    /// A folder's bytes with a "/" at their end, or "". Shared by its files; null: "".
    using Folder = std::shared_ptr<const std::string>;

    FilePath() = default;

    /// `name` in `folder`; it holds no "/".
    FilePath(Folder folder, std::string_view name)
        : m_folder(std::move(folder))
        , m_name(name) {}

    // Shares its folder with nothing. NOLINTBEGIN(google-explicit-constructor): the same in another form
    FilePath(const std::filesystem::path& path)
        : FilePath(path.native()) {}

    FilePath(const char* path)
        : FilePath(std::string(path)) {}

    FilePath(const std::string& path);
    // NOLINTEND(google-explicit-constructor)

    /// The same file, with the folder of `other` in place of its own where both are the same.
    FilePath sharing(const FilePath& other) const;

    /// With its final "/"; "" without one.
    std::string_view folder() const { return m_folder ? std::string_view(*m_folder) : std::string_view(); }

    /// Whether both have one folder in memory; files of two that are alike need not.
    bool sharesFolder(const FilePath& other) const { return m_folder == other.m_folder; }

    /// What comes after the last "/".
    const std::string& name() const { return m_name; }

    std::string native() const;

    // NOLINTNEXTLINE(google-explicit-constructor): likewise
    operator std::filesystem::path() const { return native(); }

    /// By bytes.
    friend bool operator==(const FilePath& one, const FilePath& other) {
        return one.m_name == other.m_name && one.folder() == other.folder();
    }

    friend bool operator==(const FilePath& one, const std::filesystem::path& other) {
        return one == FilePath(other);
    }

    friend bool operator==(const FilePath& one, const char* other) { return one == FilePath(other); }

    /// Likewise: as the whole paths compare.
    friend std::strong_ordering operator<=>(const FilePath& one, const FilePath& other);

private:
    Folder m_folder;
    std::string m_name;
};

using FilePaths = std::vector<FilePath>;

} // namespace velmora
