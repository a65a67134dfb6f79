#include "system/FileMove.h"

#include "system/FileCopy.h"
#include "system/FileDescriptor.h"
#include "system/Uuid.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

std::error_code systemError(int error) {
    return {error, std::generic_category()};
}

/// The name of a file that is removed at the end if it is still there.
class HiddenFile {
public:
    explicit HiddenFile(fs::path path)
        : m_path(std::move(path)) {}

    HiddenFile(const HiddenFile&) = delete;
    HiddenFile& operator=(const HiddenFile&) = delete;

    ~HiddenFile() { ::unlink(m_path.c_str()); }

    const fs::path& path() const { return m_path; }

private:
    const fs::path m_path;
};

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
    const HiddenFile copy(to.parent_path() / (".velmora-" + randomUuid()));
    try {
        copyFile(from, copy.path(), stop);
    } catch (const fs::filesystem_error& error) {
        return error.code();
    }
    if (const int error = complete(copy.path(), from)) {
        return systemError(error);
    }
    return systemError(std::rename(copy.path().c_str(), to.c_str()) == 0 ? 0 : errno);
}

} // namespace

void moveReplacing(const fs::path& from, const fs::path& to, const std::stop_token& stop) {
    std::error_code error = systemError(std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno);
    if (error) {
        error = copyReplacing(from, to, stop);
    }
    if (error) {
        throw fs::filesystem_error("cannot write", to, error);
    }
}

} // namespace velmora
