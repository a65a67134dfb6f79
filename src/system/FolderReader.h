#pragma once

// Reads the names in a folder one at a time, in the file system's order. What an entry is usually comes with
// its name; only where the file system does not tell is the entry itself looked at, so a large folder costs
// one system call for many names.

#include "system/RegularFile.h"

#include <dirent.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

enum class EntryKind : std::uint8_t {
    folder,
    link,  ///< symbolic, whatever it leads to
    other, ///< a file, a FIFO, a device, or an entry that cannot be looked at
};

struct FolderEntry {
    std::string_view name; ///< followed by a NUL; valid until the next entry is read
    EntryKind kind = EntryKind::other;
};

/// One pass over a folder. A folder that cannot be opened has no entries, and an error.
class FolderReader {
public:
    /// Opens the folder at `path`, following links.
    explicit FolderReader(const std::string& path);

    /// Reads the open folder `folder`.
    explicit FolderReader(FileDescriptor folder);

    /// The next entry, never "." or "..". Absent at the end, and when the folder cannot be read further.
    std::optional<FolderEntry> next();

    /// Why the folder could not be opened or not read to its end, or an entry in it not be looked at; else 0.
    int error() const { return m_error; }

private:
    std::unique_ptr<DIR, int (*)(DIR*)> m_stream;
    int m_error = 0;
};

} // namespace velmora
