#include "gather/DiskShare.h"

#include "system/FolderReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace velmora::Collector {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t noBound = std::uint64_t{1} << 62;

/// The space that the file at `path` takes up; of a file with several names the share of one of them.
std::uint64_t spaceOf(const struct stat& status) {
    constexpr std::uint64_t block = 512; // whatever the file system's own are
    return static_cast<std::uint64_t>(status.st_blocks) * block / std::max<nlink_t>(status.st_nlink, 1);
}

} // namespace

bool DiskShare::Part::isInDoubt(std::uint64_t free) {
    m_shrunk += m_free - std::min(m_free, free);
    m_free = free;
    return m_shrunk > m_left;
}

bool DiskShare::Part::isExceededBy(std::uint64_t written) {
    m_left = m_size - std::min(m_size, written);
    m_shrunk = 0;
    return written > m_size;
}

DiskShare::DiskShare(const fs::path& folder)
    : DiskShare(folder, freeBelow(folder)) {}

DiskShare::DiskShare(fs::path folder, const Amount& free)
    : m_folder(std::move(folder))
    , m_bytes(free.bytes)
    , m_files(free.files) {}

/// Without a bound where the file system does not tell. Some make room for files as they come, and tell none.
DiskShare::Amount DiskShare::freeBelow(const fs::path& folder) {
    struct statvfs disk {};

    if (::statvfs(folder.c_str(), &disk) != 0) {
        return {.bytes = noBound, .files = noBound};
    }
    return {.bytes = disk.f_bavail * disk.f_frsize, .files = disk.f_files == 0 ? noBound : disk.f_favail};
}

/// All that is at `path`; a file with several names counts as that many. What cannot be looked at is left
/// out: it may be gone already.
DiskShare::Amount DiskShare::takenUpBelow(const fs::path& path) {
    Amount taken;
    std::vector<std::string> pending = {path};
    while (!pending.empty()) {
        const std::string current = std::move(pending.back());
        pending.pop_back();

        struct stat status {};

        if (::lstat(current.c_str(), &status) != 0) {
            continue;
        }
        ++taken.files;
        if (!S_ISDIR(status.st_mode)) {
            taken.bytes += spaceOf(status);
            continue;
        }
        FolderReader reader(current);
        while (const std::optional<FolderEntry> entry = reader.next()) {
            pending.push_back(current + '/' + std::string(entry->name));
        }
    }
    return taken;
}

bool DiskShare::isExceeded() {
    if (m_isExceeded) {
        return true;
    }
    const Amount free = freeBelow(m_folder);
    const bool bytesAreInDoubt = m_bytes.isInDoubt(free.bytes);
    const bool filesAreInDoubt = m_files.isInDoubt(free.files);
    if (bytesAreInDoubt || filesAreInDoubt) {
        Amount written;
        for (const fs::path& path : m_counted) {
            const Amount taken = takenUpBelow(path);
            written.bytes += taken.bytes;
            written.files += taken.files;
        }
        const bool hasTooManyBytes = m_bytes.isExceededBy(written.bytes);
        m_isExceeded = m_files.isExceededBy(written.files) || hasTooManyBytes;
    }
    return m_isExceeded;
}

} // namespace velmora::Collector
