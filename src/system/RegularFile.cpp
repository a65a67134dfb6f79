#include "system/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <mutex>

namespace velmora {

namespace {

/// What is asked for by one call. The system cuts a larger request off at what it reads ahead at most, 128
/// KiB where nobody has set it.
constexpr std::int64_t requestBytes = 128LL << 10;

/// Reads as much as is in memory, at most `buffer`; the result is that of preadv2(2).
ssize_t readFromMemory(int descriptor, std::int64_t offset, std::span<std::uint8_t> buffer) {
    const iovec piece{buffer.data(), buffer.size()};
    return ::preadv2(descriptor, &piece, 1, offset, RWF_NOWAIT);
}

} // namespace

std::optional<RegularFile> RegularFile::open(const std::filesystem::path& path) {
    FileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));

    struct stat status {};

    if (!descriptor || ::fstat(descriptor.get(), &status) != 0) {
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        errno = EINVAL;
        return std::nullopt;
    }
    const Storage storage = storageOf(descriptor.get(), status.st_dev);
    return RegularFile(std::move(descriptor), status.st_size, storage);
}

std::optional<std::size_t> RegularFile::readAt(std::int64_t offset, std::span<std::uint8_t> buffer) const {
    std::size_t filled = buffer.size() >= longRead ? askForRun(offset, buffer) : 0;
    while (filled < buffer.size()) {
        const ssize_t got = ::pread(m_descriptor.get(), buffer.data() + filled, buffer.size() - filled,
                                    offset + static_cast<std::int64_t>(filled));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return std::nullopt;
        }
        if (got == 0) {
            break;
        }
        filled += static_cast<std::size_t>(got);
    }
    return filled;
}

bool RegularFile::isInMemory(std::int64_t offset) const {
    std::uint8_t byte = 0;
    return readFromMemory(m_descriptor.get(), offset, std::span(&byte, 1)) == 1;
}

void RegularFile::willNeed(std::int64_t offset, std::int64_t bytes) const {
    static std::mutex turn; // the requests of one call reach the disk one after the other
    std::unique_lock lock(turn, std::defer_lock);
    if (m_storage.kind == StorageKind::rotating) {
        lock.lock();
    }
    const std::int64_t end = std::min(offset + bytes, m_size);
    for (std::int64_t at = std::max<std::int64_t>(offset, 0); at < end; at += requestBytes) {
        ::posix_fadvise(m_descriptor.get(), at, std::min(requestBytes, end - at), POSIX_FADV_WILLNEED);
    }
}

std::size_t RegularFile::askForRun(std::int64_t offset, std::span<std::uint8_t> buffer) const {
    if (m_storage.kind == StorageKind::quick || m_storage.readsFarAhead || offset < 0 || offset >= m_size) {
        return 0;
    }
    const std::int64_t end = std::min(offset + static_cast<std::int64_t>(buffer.size()), m_size);
    const std::atomic_ref runEnd(m_runEnd);
    if (offset >= runEnd - runBytes && end <= runEnd) {
        return 0; // asked for
    }
    const auto got =
        static_cast<std::size_t>(std::max<ssize_t>(readFromMemory(m_descriptor.get(), offset, buffer), 0));
    if (offset + static_cast<std::int64_t>(got) < end) {
        runEnd = offset + runBytes;
        willNeed(offset, runBytes);
    }
    return got;
}

} // namespace velmora
