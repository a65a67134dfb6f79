// The calls about files. This library stands between a program and the C library (LD_PRELOAD) and lets calls
// fail as FaultPlan.h says. Where the C library has a name for 32-bit offsets and one for 64-bit offsets,
// both are here.

#include "tests/faults/Replacing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>

using velmora::faults::failed;
using velmora::faults::Fault;
using velmora::faults::faultOf;

namespace {

/// How many bytes a call that moves `size` of them is to ask for.
std::size_t sizeAfter(const Fault& fault, std::size_t size) {
    return fault.isShort ? std::max<std::size_t>(size / 2, std::min<std::size_t>(size, 1)) : size;
}

mode_t modeOf(int flags, va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

// NOLINTBEGIN: the C library's own names and parameters
extern "C" {

// --- opening and listing

#define OPEN(name)                                                                                           \
    int name(const char* path, int flags, ...) {                                                             \
        va_list arguments;                                                                                   \
        va_start(arguments, flags);                                                                          \
        const mode_t mode = modeOf(flags, arguments);                                                        \
        va_end(arguments);                                                                                   \
        const Fault fault = faultOf("open", path);                                                           \
        return fault ? failed(fault, -1) : VELMORA_REAL(name)(path, flags, mode);                            \
    }
#define OPENAT(name)                                                                                         \
    int name(int folder, const char* path, int flags, ...) {                                                 \
        va_list arguments;                                                                                   \
        va_start(arguments, flags);                                                                          \
        const mode_t mode = modeOf(flags, arguments);                                                        \
        va_end(arguments);                                                                                   \
        const Fault fault = faultOf("open", path);                                                           \
        return fault ? failed(fault, -1) : VELMORA_REAL(name)(folder, path, flags, mode);                    \
    }
OPEN(open)
OPEN(open64)
OPENAT(openat)
OPENAT(openat64)

FILE* fopen(const char* path, const char* mode) {
    const Fault fault = faultOf("open", path);
    return fault ? failed<FILE*>(fault, nullptr) : VELMORA_REAL(fopen)(path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
    const Fault fault = faultOf("open", path);
    return fault ? failed<FILE*>(fault, nullptr) : VELMORA_REAL(fopen64)(path, mode);
}

DIR* opendir(const char* path) {
    const Fault fault = faultOf("open", path);
    return fault ? failed<DIR*>(fault, nullptr) : VELMORA_REAL(opendir)(path);
}

DIR* fdopendir(int descriptor) {
    const Fault fault = faultOf("list", descriptor);
    return fault.error != 0 ? failed<DIR*>(fault, nullptr) : VELMORA_REAL(fdopendir)(descriptor);
}

#define READDIR(name, type)                                                                                  \
    type* name(DIR* folder) {                                                                                \
        const Fault fault = faultOf("list", ::dirfd(folder));                                                \
        if (fault.error != 0) {                                                                              \
            return failed<type*>(fault, nullptr);                                                            \
        }                                                                                                    \
        type* const entry = VELMORA_REAL(name)(folder);                                                      \
        if (fault.isUnknown && entry != nullptr) {                                                           \
            entry->d_type = DT_UNKNOWN;                                                                      \
        }                                                                                                    \
        return entry;                                                                                        \
    }
READDIR(readdir, dirent)
READDIR(readdir64, dirent64)

ssize_t getdents64(int descriptor, void* buffer, size_t size) noexcept {
    const Fault fault = faultOf("list", descriptor);
    if (fault.error != 0) {
        return failed(fault, -1);
    }
    const ssize_t filled = VELMORA_REAL(getdents64)(descriptor, buffer, size);
    for (ssize_t at = 0; fault.isUnknown && at < filled;) {
        auto* const entry = reinterpret_cast<dirent64*>(static_cast<char*>(buffer) + at);
        entry->d_type = DT_UNKNOWN;
        at += entry->d_reclen;
    }
    return filled;
}

// --- reading and writing

ssize_t read(int descriptor, void* buffer, size_t size) {
    const Fault fault = faultOf("read", descriptor);
    if (fault.error != 0) {
        return failed(fault, -1);
    }
    return fault.isEndOfFile ? 0 : VELMORA_REAL(read)(descriptor, buffer, sizeAfter(fault, size));
}

ssize_t pread(int descriptor, void* buffer, size_t size, off_t offset) {
    const Fault fault = faultOf("pread", descriptor);
    if (fault.error != 0) {
        return failed(fault, -1);
    }
    return fault.isEndOfFile ? 0 : VELMORA_REAL(pread)(descriptor, buffer, sizeAfter(fault, size), offset);
}

ssize_t pread64(int descriptor, void* buffer, size_t size, off64_t offset) {
    return pread(descriptor, buffer, size, offset);
}

ssize_t write(int descriptor, const void* buffer, size_t size) {
    const Fault fault = faultOf("write", descriptor);
    return fault.error != 0 ? failed(fault, -1)
                            : VELMORA_REAL(write)(descriptor, buffer, sizeAfter(fault, size));
}

ssize_t pwrite(int descriptor, const void* buffer, size_t size, off_t offset) {
    const Fault fault = faultOf("write", descriptor);
    return fault.error != 0 ? failed(fault, -1)
                            : VELMORA_REAL(pwrite)(descriptor, buffer, sizeAfter(fault, size), offset);
}

ssize_t pwrite64(int descriptor, const void* buffer, size_t size, off64_t offset) {
    return pwrite(descriptor, buffer, size, offset);
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t size,
                        unsigned flags) {
    const Fault fault = faultOf("copy_file_range", from);
    return fault.error != 0
               ? failed(fault, -1)
               : VELMORA_REAL(copy_file_range)(from, fromOffset, to, toOffset, sizeAfter(fault, size), flags);
}

int fsync(int descriptor) {
    const Fault fault = faultOf("fsync", descriptor);
    return fault ? failed(fault, -1) : VELMORA_REAL(fsync)(descriptor);
}

int ftruncate64(int descriptor, off64_t size) noexcept {
    const Fault fault = faultOf("write", descriptor);
    return fault ? failed(fault, -1) : VELMORA_REAL(ftruncate64)(descriptor, size);
}

// --- looking at what is there

#define STAT(name, type)                                                                                     \
    int name(const char* path, type* status) noexcept {                                                      \
        const Fault fault = faultOf("stat", path);                                                           \
        return fault ? failed(fault, -1) : VELMORA_REAL(name)(path, status);                                 \
    }
#define FSTAT(name, type)                                                                                    \
    int name(int descriptor, type* status) noexcept {                                                        \
        const Fault fault = faultOf("stat", descriptor);                                                     \
        return fault ? failed(fault, -1) : VELMORA_REAL(name)(descriptor, status);                           \
    }
#define FSTATAT(name, type)                                                                                  \
    int name(int folder, const char* path, type* status, int flags) noexcept {                               \
        const Fault fault = faultOf("stat", path);                                                           \
        return fault ? failed(fault, -1) : VELMORA_REAL(name)(folder, path, status, flags);                  \
    }
STAT(stat, struct stat)
STAT(stat64, struct stat64)
STAT(lstat, struct stat)
STAT(lstat64, struct stat64)
FSTAT(fstat, struct stat)
FSTAT(fstat64, struct stat64)
FSTATAT(fstatat, struct stat)
FSTATAT(fstatat64, struct stat64)
FSTAT(fstatfs64, struct statfs64)
STAT(statfs64, struct statfs64)

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* status) noexcept {
    const Fault fault = faultOf("stat", path);
    return fault ? failed(fault, -1) : VELMORA_REAL(statx)(folder, path, flags, mask, status);
}

// --- changing what is there

int mkdir(const char* path, mode_t mode) noexcept {
    const Fault fault = faultOf("mkdir", path);
    return fault ? failed(fault, -1) : VELMORA_REAL(mkdir)(path, mode);
}

char* mkdtemp(char* path) noexcept {
    const Fault fault = faultOf("mkdir", path);
    return fault ? failed<char*>(fault, nullptr) : VELMORA_REAL(mkdtemp)(path);
}

int rename(const char* from, const char* to) noexcept {
    const Fault fault = faultOf("rename", to);
    return fault ? failed(fault, -1) : VELMORA_REAL(rename)(from, to);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    const Fault fault = faultOf("rename", to);
    return fault ? failed(fault, -1) : VELMORA_REAL(renameat)(fromFolder, from, toFolder, to);
}

int unlink(const char* path) noexcept {
    const Fault fault = faultOf("unlink", path);
    return fault ? failed(fault, -1) : VELMORA_REAL(unlink)(path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    const Fault fault = faultOf("unlink", path);
    return fault ? failed(fault, -1) : VELMORA_REAL(unlinkat)(folder, path, flags);
}

int rmdir(const char* path) noexcept {
    const Fault fault = faultOf("unlink", path);
    return fault ? failed(fault, -1) : VELMORA_REAL(rmdir)(path);
}

int flock(int descriptor, int operation) noexcept {
    const Fault fault = faultOf("flock", descriptor);
    return fault ? failed(fault, -1) : VELMORA_REAL(flock)(descriptor, operation);
}

} // extern "C"
// NOLINTEND
