#include "system/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace velmora {

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
    return RegularFile(std::move(descriptor), status.st_size);
}

std::optional<std::size_t> RegularFile::readAt(std::int64_t offset, std::span<std::uint8_t> buffer) const {
    std::size_t filled = 0;
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

} // namespace velmora
