#include "system/FileCopy.h"

#include "system/RegularFile.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <new>
#include <system_error>
#include <vector>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kernelStep = std::size_t{64} << 20; // bytes between two looks at the stop token
constexpr std::size_t plainStep = std::size_t{1} << 20;

/// 0, or the errno of the failure.
int writeAll(int descriptor, const std::uint8_t* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(descriptor, data, size);
        if (written < 0 && errno != EINTR) {
            return errno;
        }
        if (written > 0) {
            data += written;
            size -= static_cast<std::size_t>(written);
        }
    }
    return 0;
}

int copyPlainly(const RegularFile& from, int to, std::int64_t offset, const std::stop_token& stop) {
    std::vector<std::uint8_t> buffer(plainStep);
    while (!stop.stop_requested()) {
        const std::optional<std::size_t> got = from.readAt(offset, buffer);
        if (!got) {
            return errno;
        }
        if (*got == 0) {
            return 0;
        }
        if (const int error = writeAll(to, buffer.data(), *got)) {
            return error;
        }
        offset += static_cast<std::int64_t>(*got);
    }
    return ECANCELED;
}

/// Copies the content through the kernel; goes on with plain reads where the kernel cannot.
int copyContent(const RegularFile& from, int to, const std::stop_token& stop) {
    if (::ioctl(to, FICLONE, from.descriptor()) == 0) {
        return 0;
    }
    off_t offset = 0;
    while (!stop.stop_requested()) {
        const ssize_t copied = ::copy_file_range(from.descriptor(), &offset, to, nullptr, kernelStep, 0);
        if (copied < 0 && errno == EINTR) {
            continue;
        }
        if (copied < 0 && (errno == ENOSPC || errno == EDQUOT || errno == EIO || errno == EFBIG)) {
            return errno;
        }
        if (copied <= 0) { // the end, or a pair of file systems the call does not know: a plain read tells
            return copyPlainly(from, to, offset, stop);
        }
    }
    return ECANCELED;
}

int copyTimes(const RegularFile& from, int to) {
    struct stat status {};

    if (::fstat(from.descriptor(), &status) != 0) {
        return errno;
    }
    const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
    return ::futimens(to, times.data()) == 0 ? 0 : errno;
}

} // namespace

void copyFile(const fs::path& from, const fs::path& to, const std::stop_token& stop) {
    const auto fail = [&](int error) {
        throw fs::filesystem_error("cannot copy file", from, to,
                                   std::error_code(error, std::generic_category()));
    };
    const std::optional<RegularFile> source = RegularFile::open(from);
    if (!source) {
        fail(errno);
    }
    const FileDescriptor target(
        ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY, 0600));
    if (!target) {
        fail(errno);
    }
    int error = 0;
    try {
        error = copyContent(*source, target.get(), stop);
    } catch (const std::bad_alloc&) {
        error = ENOMEM;
    }
    if (error == 0) {
        error = copyTimes(*source, target.get());
    }
    if (error != 0) {
        ::unlink(to.c_str());
        fail(error);
    }
}

} // namespace velmora
