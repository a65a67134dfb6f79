// The order of the scan: whichever way three files come, they end up in the same order.

#include "fuzz/Targets.h"
#include "gather/ScanOrder.h"

#include <algorithm>

namespace velmora::fuzz {

namespace {

FilePaths sorted(FilePaths files, const Paths& temps) {
    Collector::sortScanOrder(files, temps);
    return files;
}

bool isBefore(const FilePaths& files, const FilePath& a, const FilePath& b) {
    return std::ranges::find(files, a) < std::ranges::find(files, b);
}

} // namespace

void fuzzNaturalOrder(Bytes bytes) {
    Paths paths = absolutePaths(bytes, 4);
    Paths temps;
    if (paths.size() == 4) {
        temps.push_back(paths.back());
        paths.pop_back();
    }
    FilePaths files(paths.begin(), paths.end());
    std::ranges::sort(files);
    const FilePaths order = sorted(files, temps);
    require(std::ranges::is_permutation(order, files), "no file is lost or doubled");
    do {
        require(sorted(files, temps) == order, "the order does not depend on where files stood");
    } while (std::ranges::next_permutation(files).found);

    for (const auto& a : files) {
        for (const auto& b : files) {
            require(a == b || isBefore(sorted({a, b}, temps), a, b) == isBefore(order, a, b),
                    "two files stand as they do with a third");
        }
    }
}

} // namespace velmora::fuzz
