// The least that could be done for a scan: opens each file, asks for its size, reads what a scan reads of it,
// closes. Usage: bench_same_reads THREADS READS FOLDER. READS is a text file with a line "OFFSET SIZE PATH"
// for each read, PATH below FOLDER, the reads of a file in their order. The files are found below FOLDER
// first, then taken in the order of their inodes, whose numbers the folders tell. Prints how many bytes were
// read.

#include "native/Threads.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <unordered_map>

namespace {

struct Read {
    std::int64_t offset = 0;
    std::size_t size = 0;
};

struct Found {
    ino_t inode = 0;
    std::string path; // below the folder, with a slash before it
};

using Reads = std::unordered_map<std::string, std::vector<Read>>; // by `Found::path`

Reads readsIn(const char* list) {
    Reads reads;
    std::ifstream lines(list);
    Read read;
    std::string path;
    while (lines >> read.offset >> read.size && std::getline(lines.ignore(), path)) {
        reads['/' + path].push_back(read);
    }
    return reads;
}

/// Adds the files below `top` + `folder`.
void find(const std::string& top, const std::string& folder, std::vector<Found>& files) {
    const std::unique_ptr<DIR, int (*)(DIR*)> names(::opendir((top + folder).c_str()), ::closedir);
    if (names == nullptr) {
        std::perror((top + folder).c_str());
        std::exit(1);
    }
    std::vector<std::string> folders;
    while (const dirent* const entry = ::readdir(names.get())) {
        const std::string path = folder + '/' + entry->d_name;
        if (entry->d_type == DT_REG) {
            files.push_back({entry->d_ino, path});
        } else if (entry->d_type == DT_DIR && entry->d_name != std::string_view(".") &&
                   entry->d_name != std::string_view("..")) {
            folders.push_back(path);
        }
    }
    for (const std::string& below : folders) {
        find(top, below, files);
    }
}

std::int64_t readSame(const std::string& path, const std::vector<Read>& reads) {
    thread_local std::vector<char> buffer;
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);

    struct stat status {};

    if (file < 0 || ::fstat(file, &status) != 0) {
        std::perror(path.c_str());
        std::exit(1);
    }
    std::int64_t got = 0;
    for (const Read& read : reads) {
        buffer.resize(std::max(buffer.size(), read.size));
        got += ::pread(file, buffer.data(), read.size, read.offset);
    }
    ::close(file);
    return got;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fputs("usage: bench_same_reads THREADS READS FOLDER\n", stderr);
        return 2;
    }
    const Reads reads = readsIn(argv[2]);
    const std::string top = argv[3];
    std::vector<Found> files;
    find(top, {}, files);
    std::ranges::sort(files, {}, &Found::inode);
    const std::int64_t bytes =
        velmora::bench::sumOnThreads(std::atoi(argv[1]), files, [&](const Found& file) -> std::int64_t {
            const auto found = reads.find(file.path);
            return found == reads.end() ? 0 : readSame(top + file.path, found->second);
        });
    std::printf("%lld\n", static_cast<long long>(bytes));
}
