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

} // namespace

FileDescriptor lockRun(const std::filesystem::path& path) {
    FileDescriptor directory(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));

    struct stat status {};

    int error = 0;
    if (!directory || ::fstat(directory.get(), &status) != 0) {
        error = errno;
    } else if (status.st_uid != ::geteuid()) {
        error = EPERM;
    } else if (::flock(directory.get(), LOCK_EX | LOCK_NB) != 0) {
        error = errno == EWOULDBLOCK ? EWOULDBLOCK : ENOLCK;
    } else if (!isStillAt(path, status)) {
        error = ESTALE;
    }
    if (error != 0) {
        directory = FileDescriptor();
        errno = error;
    }
    return directory;
}

} // namespace velmora
