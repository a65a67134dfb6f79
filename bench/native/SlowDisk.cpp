// A disk with one head. Usage: bench_slow_disk IMAGE FOLDER serves a file FOLDER/disk, whose bytes are
// those of IMAGE, as slowly as a rotating disk would.
//
// The model, all of it:
// - There is one head. It serves one read at a time, in the order in which they come.
// - A read that begins where the last one ended costs its bytes at 150 MB/s.
// - Any other read costs 8 ms more: what a disk of 7,200 turns a minute needs on average to move its
//   head (about 4 ms) and to wait for the sector (half a turn, 4.2 ms). Near or far makes no
//   difference.
// - A disk reads on by itself: a read that follows the last one and comes within 8 ms of its end is
//   timed as if it had come at that end. So a program that reads in sequence reaches the full rate, and
//   what this model needs for itself does not count.
// - Nothing is reordered or cached here. What IMAGE needs in truth passes within the time modelled.
//
// What is real: a loop device over FOLDER/disk with `rotational` set, a file system on it, and the
// kernel's page cache, read-ahead (128 KiB, as on real disks) and scheduler above it. So folders,
// inodes and extents cost seeks as they do on a disk.
//
// What is left out: a disk chooses among the reads that wait, while a loop device hands on one after
// another; short seeks cost as much as long ones; outer tracks are no faster than inner ones; nothing
// is written.

#define FUSE_USE_VERSION 312

#include "native/ModelledDevice.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds seek{8};
constexpr double bytesPerSecond = 150e6;

int image = -1;
off_t headAt = -1;            // the byte after the last one read
Clock::time_point headFree{}; // when the last read ended or will end

/// When the head will have read these bytes, if it is asked now.
Clock::time_point served(off_t offset, std::size_t size) {
    const auto now = Clock::now();
    auto begin = std::max(now, headFree);
    if (offset != headAt) {
        begin += seek;
    } else if (now < headFree + seek) {
        begin = headFree;
    }
    const std::chrono::duration<double> transfer(static_cast<double>(size) / bytesPerSecond);
    headAt = offset + static_cast<off_t>(size);
    headFree = begin + std::chrono::duration_cast<Clock::duration>(transfer);
    return headFree;
}

bool isDisk(const char* path) {
    return std::strcmp(path, "/disk") == 0;
}

int getattr(const char* path, struct stat* status, fuse_file_info* /*file*/) {
    if (isDisk(path)) {
        return ::fstat(image, status) == 0 ? 0 : -errno;
    }
    status->st_mode = S_IFDIR | 0755;
    status->st_nlink = 2;
    return std::strcmp(path, "/") == 0 ? 0 : -ENOENT;
}

int open(const char* /*path*/, fuse_file_info* file) {
    file->direct_io = 1; // the kernel keeps nothing of FOLDER/disk: the page cache is above the loop device
    return 0;
}

int read(const char* /*path*/, char* buffer, size_t size, off_t offset, fuse_file_info* /*file*/) {
    const auto end = served(offset, size);
    const ssize_t got = ::pread(image, buffer, size, offset);
    const int error = errno;
    std::this_thread::sleep_until(end);
    return got < 0 ? -error : static_cast<int>(got);
}

} // namespace

int main(int argc, char** argv) {
    image = argc != 3 ? -1 : ::open(argv[1], O_RDONLY | O_CLOEXEC);
    if (image < 0) {
        std::perror("bench_slow_disk IMAGE FOLDER");
        return 2;
    }
    fuse_operations operations{};
    operations.getattr = getattr;
    operations.open = open;
    operations.read = read;
    return velmora::bench::serve(operations, {"-s", argv[2]});
}
