#pragma once

// The only way the program opens a file to read it. A FIFO, a socket, a device or a directory is never read:
// opening cannot block, and what is not a regular file is refused before the first byte.

#include "system/FileDescriptor.h"
#include "system/Storage.h"

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

    /// A read of at least this many bytes is taken for one of many that go through the file.
    static constexpr std::size_t longRead = std::size_t{256} << 10;

    /// What is asked for at once for a long read: a disk reads it in ten times the time of a seek.
    static constexpr std::int64_t runBytes = 8LL << 20;

    /// The file of `size` bytes on `storage` that is open for reading at `descriptor`.
    RegularFile(FileDescriptor descriptor, std::int64_t size, Storage storage = {})
        : m_descriptor(std::move(descriptor))
        , m_size(size)
        , m_storage(storage) {}

    int descriptor() const { return m_descriptor.get(); }

    /// Size in bytes at the time of opening.
    std::int64_t size() const { return m_size; }

    /// Reads into `buffer` from byte `offset`: fewer bytes than asked for at the end of the file, none beyond
    /// it. Absent after a read error, or for a negative offset. A long read of what is not in memory asks a
    /// rotating disk or a network for the bytes after it, too: several such files at a time would else cost a
    /// seek or a round trip for every 128 KiB that the kernel reads ahead by itself.
    std::optional<std::size_t> readAt(std::int64_t offset, std::span<std::uint8_t> buffer) const;

    /// What the file lies on.
    const Storage& storage() const { return m_storage; }

    /// Whether the byte at `offset` can be read without waiting for the disk. False where the file system
    /// cannot tell, as those of networks.
    bool isInMemory(std::int64_t offset) const;

    /// Tells the system to bring `bytes` from `offset` on into memory, as far as the file has them, and does
    /// not wait for them. Errors are for the reader to meet.
    void willNeed(std::int64_t offset, std::int64_t bytes) const;

private:
    /// Reads what is in memory, and asks for a run where that is less than `buffer`. Returns the bytes read.
    std::size_t askForRun(std::int64_t offset, std::span<std::uint8_t> buffer) const;

    FileDescriptor m_descriptor;
    std::int64_t m_size = 0;
    Storage m_storage;
    mutable std::int64_t m_runEnd = 0; // of the last run that was asked for; several threads may set it
};

} // namespace velmora
