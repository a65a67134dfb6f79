// The least any program could do to time files: open each, ask for its size, read 64 KiB at either end,
// close. Usage: bench_floor FOLDER... Prints how many bytes it read.

#include "native/Threads.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace {

std::int64_t readBothEnds(const std::string& path) {
    static constexpr std::int64_t end = std::int64_t{64} * 1024;
    thread_local std::array<char, end> buffer;
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);

    struct stat status {};

    if (file < 0 || ::fstat(file, &status) != 0) {
        std::perror(path.c_str());
        return 0;
    }
    const std::int64_t tail = std::max<std::int64_t>(0, status.st_size - end);
    const std::int64_t got =
        ::pread(file, buffer.data(), buffer.size(), 0) + ::pread(file, buffer.data(), buffer.size(), tail);
    ::close(file);
    return got;
}

} // namespace

int main(int argc, char** argv) {
    const std::span<char*> folders(argv + 1, argv + argc);
    const auto files = velmora::bench::regularFilesBelow(folders);
    const std::int64_t bytes = velmora::bench::sumOnThreads(velmora::bench::sixThreads, files, readBothEnds);
    std::printf("%lld\n", static_cast<long long>(bytes));
}
