// The playing time of a library as TagLib tells it. Usage: bench_taglib THREADS FOLDER... Prints
// seconds.

#include "native/Threads.h"

#include <audioproperties.h>
#include <fileref.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: bench_taglib THREADS FOLDER...\n", stderr);
        return 2;
    }
    const std::span<char*> folders(argv + 2, argv + argc);
    const auto files = velmora::bench::regularFilesBelow(folders);
    const std::int64_t milliseconds =
        velmora::bench::sumOnThreads(std::atoi(argv[1]), files, [](const std::string& path) -> std::int64_t {
            const TagLib::FileRef file(path.c_str());
            return file.isNull() || file.audioProperties() == nullptr
                       ? 0
                       : file.audioProperties()->lengthInMilliseconds();
        });
    std::printf("%.3f\n", static_cast<double>(milliseconds) / 1000);
}
