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

bool isFolder(int parent, const char* name) {
    struct stat status {};

    return ::fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

bool isLink(int parent, const char* name) {
    struct stat status {};

    return ::fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
}

EntryKind kindOf(int parent, const dirent& entry) {
    switch (entry.d_type) {
    case DT_DIR:
        return EntryKind::folder;
    case DT_LNK:
        return EntryKind::link;
    case DT_UNKNOWN:
        if (isFolder(parent, entry.d_name)) {
            return EntryKind::folder;
        }
        return isLink(parent, entry.d_name) ? EntryKind::link : EntryKind::other;
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
            m_error = errno;
            return std::nullopt;
        }
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            return FolderEntry{name, kindOf(::dirfd(m_stream.get()), *entry)};
        }
    }
    return std::nullopt;
}

} // namespace velmora
