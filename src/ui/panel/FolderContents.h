#pragma once

// What lies in a folder, as a list for people to choose from. Only names and what `stat` tells are read; no
// file is opened.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace velmora {

enum class ListedKind : std::uint8_t { folder, audio, archive, other };

struct ListedFile {
    std::string name; ///< bytes
    ListedKind kind = ListedKind::other;
    std::int64_t bytes = -1;   ///< -1: unknown
    std::int64_t modified = 0; ///< seconds since 1970; 0: unknown

    bool hidden() const { return name.starts_with('.'); }
};

struct FolderContents {
    std::filesystem::path folder;
    std::vector<ListedFile> files = {}; ///< in natural order
    int error = 0; ///< why it could not be read, or not to its end: a value of errno; 0: it was
};

/// The names in `folder`, with their kinds: those of files are told by the name. A link counts as what it
/// leads to. Any thread; may block for as long as the file system does.
FolderContents readFolder(const std::filesystem::path& folder);

/// Adds sizes and times to all that can be looked at, which takes longer than to read the names. Any thread;
/// blocks as above.
void lookAtFiles(FolderContents& contents);

} // namespace velmora
