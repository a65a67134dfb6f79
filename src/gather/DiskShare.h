#pragma once

// How much of the disk one extraction may fill. An archive may hold a thousand times its own size, and a full
// temporary file system would hurt everything else the user runs.

#include "system/Paths.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace velmora::Collector {

/// Nine tenths of what is free on a file system when the extraction begins. All that the extraction writes
/// counts together, however many files it is.
///
/// What counts is the space that its own files take up. What other programs write on the same disk meanwhile
/// is none of its business; but its files cannot have grown by more than the free space has shrunk, from look
/// to look. Only when that adds up to what is left of the share are the files counted, and it begins anew. So
/// a look costs one system call as a rule.
class DiskShare {
public:
    /// A share of the file system that holds `folder`; without a bound where that does not tell its size.
    explicit DiskShare(std::filesystem::path folder);

    /// What is at `path`, a file or a folder with all in it, counts from here on.
    void count(std::filesystem::path path) { m_counted.push_back(std::move(path)); }

    /// Bytes that the extraction may write in all.
    std::uint64_t bytes() const { return m_bytes; }

    /// Whether more than that was written, now or at an earlier look.
    bool isExceeded();

private:
    std::optional<std::uint64_t> freeBytes() const;

    std::filesystem::path m_folder;
    std::uint64_t m_free;       // at the last look
    std::uint64_t m_bytes;      // the share
    std::uint64_t m_shrunk = 0; // by how much that shrank since the files were counted
    std::uint64_t m_left;       // of the share, when they were
    Paths m_counted;
    bool m_isExceeded = false;
};

} // namespace velmora::Collector
