// How long walking and ordering take, apart from measuring, and how long unpacking does.
// Usage: bench_gathering PATH... Prints the files found and the seconds it took; temporary folders are
// removed.

#include "gather/Gathering.h"
#include "system/Paths.h"
#include "system/TempRegistry.h"

#include <chrono>
#include <cstdio>

int main(int argc, char** argv) {
    const velmora::Paths paths(argv + 1, argv + argc);
    const auto begin = std::chrono::steady_clock::now();
    const velmora::GatherResult found = velmora::Collector::gather(paths);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    velmora::TempRegistry::add(found.temps);
    velmora::TempRegistry::releaseAll();
    std::printf("%zu %.6f\n", found.files.size(), took.count());
}
