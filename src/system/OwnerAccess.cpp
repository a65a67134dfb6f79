#include "system/OwnerAccess.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

namespace velmora {

void grantOwner(int parent, const char* name, mode_t bits) {
    const FileDescriptor handle(::openat(parent, name, O_PATH | O_NOFOLLOW | O_CLOEXEC));

    struct stat status {};

    if (!handle || ::fstat(handle.get(), &status) != 0 || S_ISLNK(status.st_mode) ||
        (status.st_mode & bits) == bits) {
        return;
    }
    // Through the handle, not the name: whoever else may write here could put a link in the entry's place.
    const std::string entry = "/proc/self/fd/" + std::to_string(handle.get());
    ::chmod(entry.c_str(), (status.st_mode | bits) & ALLPERMS);
}

FileDescriptor openOwnFolder(int parent, const char* name) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    FileDescriptor folder(::openat(parent, name, flags));
    if (!folder && errno == EACCES) {
        grantOwner(parent, name, S_IRWXU);
        folder = FileDescriptor(::openat(parent, name, flags));
    }

    struct stat status {};

    if (folder && ::fstat(folder.get(), &status) == 0 && (status.st_mode & S_IRWXU) != S_IRWXU) {
        ::fchmod(folder.get(), (status.st_mode | S_IRWXU) & ALLPERMS);
    }
    return folder;
}

} // namespace velmora
