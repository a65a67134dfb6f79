#pragma once

// How much of the disk one extraction may fill. An archive may hold a thousand times its own size, and a full
// temporary file system would hurt everything else the user runs.

#include "system/Paths.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace velmora::Collector {

/// Nine tenths of what is free on a file system when the extraction begins, of its bytes and of the files
/// that it has room for. All that the extraction writes counts together, however many files it is.
///
/// What counts is what its own files take up. What other programs write on the same disk meanwhile is none of
/// its business; but its files cannot have grown by more than what is free has shrunk, from look to look.
/// Only when that adds up to what is left of the share are the files counted, and it begins anew. So a look
/// costs one system call as a rule.
class DiskShare {
public:
    /// A share of the file system that holds `folder`; without a bound on what that does not tell.
    explicit DiskShare(const std::filesystem::path& folder);

    /// What is at `path`, a file or a folder with all in it, counts from here on.
    void count(std::filesystem::path path) { m_counted.push_back(std::move(path)); }

    /// Bytes that the extraction may write in all.
    std::uint64_t bytes() const { return m_bytes.size(); }

    /// Whether more than the share was written, now or at an earlier look.
    bool isExceeded();

private:
    /// The share of one thing that a file system runs out of.
    class Part {
    public:
        explicit Part(std::uint64_t free)
            : m_size(free / 10 * 9)
            , m_free(free)
            , m_left(m_size) {}

        std::uint64_t size() const { return m_size; }

        /// Whether the files must be counted, now that `free` is left on the disk.
        bool isInDoubt(std::uint64_t free);

        /// Whether it is exceeded by files that were counted and take up `written`.
        bool isExceededBy(std::uint64_t written);

    private:
        std::uint64_t m_size;
        std::uint64_t m_free;       // on the disk, at the last look
        std::uint64_t m_shrunk = 0; // by how much that shrank since the files were counted
        std::uint64_t m_left;       // of the share, when they were
    };

    /// What is free on a file system, or what files take up on it.
    struct Amount {
        std::uint64_t bytes = 0;
        std::uint64_t files = 0;
    };

    DiskShare(std::filesystem::path folder, const Amount& free);

    static Amount freeBelow(const std::filesystem::path& folder);
    static Amount takenUpBelow(const std::filesystem::path& path);

    std::filesystem::path m_folder;
    Part m_bytes;
    Part m_files;
    Paths m_counted;
    bool m_isExceeded = false;
};

} // namespace velmora::Collector
