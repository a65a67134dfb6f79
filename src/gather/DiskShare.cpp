#include "gather/DiskShare.h"

#include "system/FolderReader.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace velmora::Collector {

namespace {

namespace fs = std::filesystem;

/// The space that the file at `path` takes up; of a file with several names the share of one of them.
std::uint64_t spaceOf(const struct stat& status) {
    constexpr std::uint64_t block = 512; // whatever the file system's own are
    return static_cast<std::uint64_t>(status.st_blocks) * block / std::max<nlink_t>(status.st_nlink, 1);
}

/// The space that everything at `path` takes up. What cannot be looked at is left out: it may be gone
/// already.
std::uint64_t spaceBelow(const fs::path& path) {
    std::uint64_t space = 0;
    std::vector<std::string> pending = {path};
    while (!pending.empty()) {
        const std::string current = std::move(pending.back());
        pending.pop_back();

        struct stat status {};

        if (::lstat(current.c_str(), &status) != 0) {
            continue;
        }
        if (!S_ISDIR(status.st_mode)) {
            space += spaceOf(status);
            continue;
        }
        FolderReader reader(current);
        while (const std::optional<FolderEntry> entry = reader.next()) {
            pending.push_back(current + '/' + std::string(entry->name));
        }
    }
    return space;
}

} // namespace

DiskShare::DiskShare(fs::path folder)
    : m_folder(std::move(folder))
    , m_free(freeBytes().value_or(std::uint64_t{1} << 62)) // no bound
    , m_bytes(m_free / 10 * 9)
    , m_left(m_bytes) {}

std::optional<std::uint64_t> DiskShare::freeBytes() const {
    std::error_code error;
    const fs::space_info room = fs::space(m_folder, error);
    return error ? std::nullopt : std::optional<std::uint64_t>(room.available);
}

bool DiskShare::isExceeded() {
    const std::optional<std::uint64_t> free = freeBytes();
    if (m_isExceeded || !free) {
        return m_isExceeded;
    }
    m_shrunk += m_free - std::min(m_free, *free);
    m_free = *free;
    if (m_shrunk > m_left) {
        std::uint64_t written = 0;
        for (const fs::path& path : m_counted) {
            written += spaceBelow(path);
        }
        m_isExceeded = written > m_bytes;
        m_left = m_bytes - std::min(m_bytes, written);
        m_shrunk = 0;
    }
    return m_isExceeded;
}

} // namespace velmora::Collector
