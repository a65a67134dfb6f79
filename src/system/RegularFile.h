#pragma once

// The only way the program opens a file to read it. A FIFO, a socket, a device or a directory is never read:
// opening cannot block, and what is not a regular file is refused before the first byte.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <utility>

namespace velmora {

/// An open file descriptor, closed when its owner goes. -1 is none.
class FileDescriptor {
public:
    FileDescriptor() = default;

    explicit FileDescriptor(int descriptor)
        : m_descriptor(descriptor) {}

    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }

    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor();

    int get() const { return m_descriptor; }

    /// The descriptor, from here on the caller's to close.
    int release() { return std::exchange(m_descriptor, -1); }

    explicit operator bool() const { return m_descriptor >= 0; }

private:
    int m_descriptor = -1;
};

/// A regular file open for reading. Reads name their position, so one file may serve several readers in one
/// thread or many.
class RegularFile {
public:
    /// Opens `path`, following links. Absent if it cannot be opened or is not a regular file; `errno` then
    /// says why (EINVAL for what is not a regular file).
    static std::optional<RegularFile> open(const std::filesystem::path& path);

    int descriptor() const { return m_descriptor.get(); }

    /// Size in bytes at the time of opening.
    std::int64_t size() const { return m_size; }

    /// Reads into `buffer` from byte `offset`: fewer bytes than asked for at the end of the file, none beyond
    /// it. Absent after a read error, or for a negative offset.
    std::optional<std::size_t> readAt(std::int64_t offset, std::span<std::uint8_t> buffer) const;

private:
    RegularFile(FileDescriptor descriptor, std::int64_t size)
        : m_descriptor(std::move(descriptor))
        , m_size(size) {}

    FileDescriptor m_descriptor;
    std::int64_t m_size = 0;
};

} // namespace velmora
