#include "system/RunLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace velmora {

namespace {

/// Whether `path` still leads to what is open as `descriptor`.
bool isStillAt(const std::filesystem::path& path, const struct stat& opened) {
    struct stat found {};

    return ::lstat(path.c_str(), &found) == 0 && found.st_dev == opened.st_dev &&
           found.st_ino == opened.st_ino;
}

/// `kind` is a flag of open(2).
FileDescriptor lockItem(const std::filesystem::path& path, int kind) {
    FileDescriptor item(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | kind));

    struct stat status {};

    int error = 0;
    if (!item || ::fstat(item.get(), &status) != 0) {
        error = errno;
    } else if (status.st_uid != ::geteuid()) {
        error = EPERM;
    } else if (::flock(item.get(), LOCK_EX | LOCK_NB) != 0) {
        error = errno == EWOULDBLOCK ? EWOULDBLOCK : ENOLCK;
    } else if (!isStillAt(path, status)) {
        error = ESTALE;
    }
    if (error != 0) {
        item = FileDescriptor();
        errno = error;
    }
    return item;
}

} // namespace

FileDescriptor lockRun(const std::filesystem::path& path) {
    return lockItem(path, O_DIRECTORY);
}

FileDescriptor lockFile(const std::filesystem::path& path) {
    return lockItem(path, O_NONBLOCK | O_NOCTTY);
}

bool wasTaken(int error) {
    return error == EWOULDBLOCK || error == ESTALE || error == ENOENT;
}

} // namespace velmora
