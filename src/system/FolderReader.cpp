#include "system/FolderReader.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace velmora {

namespace {

DIR* streamOf(FileDescriptor folder) {
    DIR* stream = folder ? ::fdopendir(folder.get()) : nullptr;
    if (stream != nullptr) {
        folder.release(); // the stream closes it
    }
    return stream;
}

/// Looks at the entry itself; notes in `error` why it cannot be. One that has gone meanwhile is no failure.
EntryKind kindOnDisk(int parent, const char* name, int& error) {
    struct stat status {};

    if (::fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        error = errno == ENOENT ? error : errno;
        return EntryKind::other;
    }
    if (S_ISDIR(status.st_mode)) {
        return EntryKind::folder;
    }
    return S_ISLNK(status.st_mode) ? EntryKind::link : EntryKind::other;
}

EntryKind kindOf(int parent, const dirent& entry, int& error) {
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
    : m_stream(streamOf(std::move(folder)), &::closedir)
    , m_error(m_stream ? 0 : errno) {}

std::optional<FolderEntry> FolderReader::next() {
    while (m_stream) {
        errno = 0; // readdir tells an error from the end by it alone
        const dirent* entry = ::readdir(m_stream.get());
        if (entry == nullptr) {
            m_error = errno != 0 ? errno : m_error;
            return std::nullopt;
        }
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            return FolderEntry{name, kindOf(::dirfd(m_stream.get()), *entry, m_error)};
        }
    }
    return std::nullopt;
}

} // namespace velmora
