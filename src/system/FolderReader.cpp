#include "system/FolderReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <new>
#include <utility>

namespace velmora {

namespace {

/// In bytes. What a name costs is the file system's own work: a larger buffer saves calls, but no time that
/// could be measured, with 20, 2,000 or 100,000 names in a folder.
constexpr std::size_t bufferSize = std::size_t{32} << 10;

/// Looks at the entry itself, and asks for no more than what it is; notes in `error` why that cannot be told.
/// One that has gone meanwhile is no failure.
EntryKind kindOnDisk(int parent, const char* name, int& error) {
    constexpr int asItStands = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;

    struct statx status {};

    if (::statx(parent, name, asItStands, STATX_TYPE, &status) != 0) {
        error = errno == ENOENT ? error : errno;
        return EntryKind::other;
    }
    if (S_ISDIR(status.stx_mode)) {
        return EntryKind::folder;
    }
    return S_ISLNK(status.stx_mode) ? EntryKind::link : EntryKind::other;
}

EntryKind kindOf(int parent, const dirent64& entry, int& error) {
    switch (entry.d_type) {
    case DT_DIR:
        return EntryKind::folder;
    case DT_LNK:
        return EntryKind::link;
    case DT_UNKNOWN:
        return kindOnDisk(parent, entry.d_name, error);
    default:
        return EntryKind::other;
    }
}

} // namespace

FolderReader::FolderReader(const std::string& path)
    : FolderReader(FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))) {}

FolderReader::FolderReader(FileDescriptor folder)
    : m_folder(std::move(folder))
    , m_error(m_folder ? 0 : errno) {}

std::optional<FolderEntry> FolderReader::next() {
    while (m_position < m_filled || fill()) {
        const auto* entry = reinterpret_cast<const dirent64*>(m_buffer.get() + m_position);
        m_position += entry->d_reclen;
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            return FolderEntry{name, kindOf(m_folder.get(), *entry, m_error)};
        }
    }
    return std::nullopt;
}

bool FolderReader::fill() {
    if (!m_folder) {
        return false;
    }
    if (!m_buffer) {
        m_buffer.reset(new (std::nothrow) std::byte[bufferSize]);
    }
    const ssize_t filled = m_buffer ? ::getdents64(m_folder.get(), m_buffer.get(), bufferSize) : -1;
    if (filled < 0 && (!m_buffer || errno != ENOENT)) { // a folder that was removed meanwhile has no entries
        m_error = m_buffer ? errno : ENOMEM;
    }
    m_position = 0;
    m_filled = filled < 0 ? 0 : static_cast<std::size_t>(filled);
    return m_filled > 0;
}

} // namespace velmora
