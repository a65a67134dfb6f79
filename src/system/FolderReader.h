#pragma once

// Reads the names in a folder one at a time, in the file system's order. What an entry is usually comes with
// its name; only where the file system does not tell is the entry itself looked at. So a folder costs opening
// and closing it, one system call for a thousand names or two, and one that tells that there are no more.

#include "system/FileDescriptor.h"

#include <cstddef>
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

    /// The open folder, for calls that name its entries; negative when it could not be opened.
    int descriptor() const { return m_folder.get(); }

private:
    /// Whether there are more entries, which are in the buffer then.
    bool fill();

    FileDescriptor m_folder;
    std::unique_ptr<std::byte[]> m_buffer; // none before the first entry is asked for
    std::size_t m_position = 0;            // in the buffer, of the next entry
    std::size_t m_filled = 0;              // bytes
    int m_error = 0;
};

} // namespace velmora
