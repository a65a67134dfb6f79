// The playing time of a library as TagLib tells it. Usage: bench_taglib FOLDER... Prints seconds.

#include "native/SixThreads.h"

#include <audioproperties.h>
#include <fileref.h>

#include <cstdint>
#include <cstdio>

int main(int argc, char** argv) {
    const std::span<char*> folders(argv + 1, argv + argc);
    const auto files = velmora::bench::regularFilesBelow(folders);
    const std::int64_t milliseconds =
        velmora::bench::sumOnSixThreads(files, [](const std::string& path) -> std::int64_t {
            const TagLib::FileRef file(path.c_str());
            return file.isNull() || file.audioProperties() == nullptr
                       ? 0
                       : file.audioProperties()->lengthInMilliseconds();
        });
    std::printf("%.3f\n", static_cast<double>(milliseconds) / 1000);
}
