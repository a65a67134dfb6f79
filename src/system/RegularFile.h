#pragma once

// The only way the program opens a file to read it. A FIFO, a socket, a device or a directory is never read:
// opening cannot block, and what is not a regular file is refused before the first byte.

#include "system/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <utility>

namespace velmora {

/// A regular file open for reading. Reads name their position, so one file may serve several readers in one
/// thread or many.
class RegularFile {
public:
    /// Opens `path`, following links. Absent if it cannot be opened or is not a regular file; `errno` then
    /// says why (EINVAL for what is not a regular file).
    static std::optional<RegularFile> open(const std::filesystem::path& path);

    /// The file of `size` bytes that is open for reading at `descriptor`.
    RegularFile(FileDescriptor descriptor, std::int64_t size)
        : m_descriptor(std::move(descriptor))
        , m_size(size) {}

    int descriptor() const { return m_descriptor.get(); }

    /// Size in bytes at the time of opening.
    std::int64_t size() const { return m_size; }

    /// Reads into `buffer` from byte `offset`: fewer bytes than asked for at the end of the file, none beyond
    /// it. Absent after a read error, or for a negative offset.
    std::optional<std::size_t> readAt(std::int64_t offset, std::span<std::uint8_t> buffer) const;

private:
    FileDescriptor m_descriptor;
    std::int64_t m_size = 0;
};

} // namespace velmora
