// A folder as if it lay on another machine. Usage: bench_slow_network SOURCE FOLDER shows the folder
// SOURCE in FOLDER, for reading.
//
// The model, all of it:
// - Every question to the other machine takes 5 ms: the look-up of a name (which is its stat), a stat
//   whose answer has grown old, an open, a read of up to 128 KiB, a block of names of a folder.
// - Any number of questions are under way at once; none waits for another, and bytes cost nothing. So
//   what counts is how many questions of a file depend on each other, and how many files are asked for
//   at once.
// - What was told of a name holds for 3 s, as on NFS (acregmin): a stat after a look-up is free. The
//   names of a folder come with their stat, as on NFS, SMB and SFTP.
// - Closing costs nothing.
//
// What is real: the kernel's page cache and its read-ahead of 128 KiB, as FUSE and NFS have it unless
// an administrator changes it. What SOURCE needs in truth passes within the 5 ms. `statfs` says FUSE,
// as for sshfs.
//
// What is left out: bandwidth; a server that is busy; answers that come late; opening without a look-up
// in one question, as NFS 4 and SMB can.

#define FUSE_USE_VERSION 312

#include "native/ModelledDevice.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>

namespace {

constexpr std::chrono::milliseconds roundTrip{5};
constexpr double validSeconds = 3;

int source = -1; // the folder that is shown

/// Lets one question last as long as its way to the other machine and back, from its construction.
class Trip {
public:
    Trip() = default;
    Trip(const Trip&) = delete;
    Trip& operator=(const Trip&) = delete;

    ~Trip() { std::this_thread::sleep_until(m_end); }

private:
    const std::chrono::steady_clock::time_point m_end = std::chrono::steady_clock::now() + roundTrip;
};

/// FUSE names "/a/b" what is "a/b" below the source; "/" is the source itself.
const char* below(const char* path) {
    return path[1] == '\0' ? "." : path + 1;
}

int result(int returned) {
    return returned < 0 ? -errno : returned;
}

int getattr(const char* path, struct stat* status, fuse_file_info* /*file*/) {
    const Trip trip;
    return result(::fstatat(source, below(path), status, AT_SYMLINK_NOFOLLOW));
}

int open(const char* path, fuse_file_info* file) {
    const Trip trip;
    const int descriptor = ::openat(source, below(path), O_RDONLY | O_CLOEXEC);
    file->fh = static_cast<std::uint64_t>(descriptor);
    return descriptor < 0 ? -errno : 0;
}

int read(const char* /*path*/, char* buffer, size_t size, off_t offset, fuse_file_info* file) {
    const Trip trip;
    return result(static_cast<int>(::pread(static_cast<int>(file->fh), buffer, size, offset)));
}

int release(const char* /*path*/, fuse_file_info* file) {
    return result(::close(static_cast<int>(file->fh)));
}

/// Tells the names from `offset` on, as many as fit into one block.
int readdir(const char* path, void* block, fuse_fill_dir_t add, off_t offset, fuse_file_info* /*file*/,
            fuse_readdir_flags /*flags*/) {
    const Trip trip;
    const int descriptor = ::openat(source, below(path), O_RDONLY | O_CLOEXEC | O_DIRECTORY);
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(descriptor < 0 ? nullptr : ::fdopendir(descriptor),
                                                     ::closedir);
    if (folder == nullptr) {
        return -errno;
    }
    ::seekdir(folder.get(), offset);
    while (const dirent* const entry = ::readdir(folder.get())) {
        struct stat status {};

        if (::fstatat(descriptor, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
            add(block, entry->d_name, &status, ::telldir(folder.get()), FUSE_FILL_DIR_PLUS) != 0) {
            break;
        }
    }
    return 0;
}

void* init(fuse_conn_info* connection, fuse_config* settings) {
    connection->max_background = 1024; // else the kernel holds back reads ahead beyond the twelfth
    connection->congestion_threshold = 1024;
    connection->want &= ~FUSE_CAP_AUTO_INVAL_DATA; // what is in memory is read without a question
    settings->entry_timeout = validSeconds;
    settings->attr_timeout = validSeconds;
    settings->kernel_cache = 1; // a file that has not changed is not read again
    settings->use_ino = 1;
    return nullptr;
}

} // namespace

int main(int argc, char** argv) {
    source = argc != 3 ? -1 : ::open(argv[1], O_RDONLY | O_CLOEXEC | O_DIRECTORY);
    if (source < 0) {
        std::perror("bench_slow_network SOURCE FOLDER");
        return 2;
    }
    fuse_operations operations{};
    operations.getattr = getattr;
    operations.open = open;
    operations.read = read;
    operations.release = release;
    operations.readdir = readdir;
    operations.init = init;
    return velmora::bench::serve(operations, {"-oro,max_threads=256,max_idle_threads=256", argv[2]});
}
