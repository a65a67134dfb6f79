#include "system/FileMove.h"

#include "system/FileCopy.h"
#include "system/HiddenFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;

std::error_code systemError(int error) {
    return {error, std::generic_category()};
}

/// Gives `copy` the permissions of `from` where the file system has any, and waits until it is on the disk: a
/// rename may get there before the content does. 0, or the errno of the failure.
int complete(const fs::path& copy, const fs::path& from) {
    const FileDescriptor file(::open(copy.c_str(), O_RDONLY | O_CLOEXEC));

    struct stat status {};

    if (!file || ::stat(from.c_str(), &status) != 0) {
        return errno;
    }
    ::fchmod(file.get(), status.st_mode);
    return ::fsync(file.get()) == 0 ? 0 : errno;
}

/// The error of the step that failed.
std::error_code copyReplacing(const fs::path& from, const fs::path& to, const std::stop_token& stop) {
    try {
        const HiddenFile copy(to.parent_path());
        copyFile(from, copy.path(), stop);
        if (const int error = complete(copy.path(), from)) {
            return systemError(error);
        }
        return systemError(std::rename(copy.path().c_str(), to.c_str()) == 0 ? 0 : errno);
    } catch (const std::system_error& error) {
        return error.code();
    }
}

} // namespace

void moveReplacing(const fs::path& from, const fs::path& to, const std::stop_token& stop) {
    removeDeadHiddenFiles(to.parent_path());
    std::error_code error = systemError(std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno);
    if (error) {
        error = copyReplacing(from, to, stop);
    }
    if (error) {
        throw fs::filesystem_error("cannot write", to, error);
    }
}

} // namespace velmora
