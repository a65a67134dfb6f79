// The order of the scan: whichever way three files come, they end up in the same order.

#include "fuzz/Targets.h"
#include "gather/ScanOrder.h"

#include <algorithm>

namespace velmora::fuzz {

namespace {

Paths sorted(Paths files, const Paths& temps) {
    Collector::sortScanOrder(files, temps);
    return files;
}

/// By their bytes: "//" and "/" are equal paths.
bool isBefore(const Paths& files, const std::filesystem::path& a, const std::filesystem::path& b) {
    const auto find = [&files](const std::filesystem::path& file) {
        return std::ranges::find_if(files,
                                    [&](const auto& other) { return other.native() == file.native(); });
    };
    return find(a) < find(b);
}

} // namespace

void fuzzNaturalOrder(Bytes bytes) {
    Paths files = absolutePaths(bytes, 4);
    Paths temps;
    if (files.size() == 4) {
        temps.push_back(files.back());
        files.pop_back();
    }
    std::ranges::sort(files);
    const Paths order = sorted(files, temps);
    require(std::ranges::is_permutation(order, files), "no file is lost or doubled");
    do {
        require(sorted(files, temps) == order, "the order does not depend on where files stood");
    } while (std::ranges::next_permutation(files).found);

    for (const auto& a : files) {
        for (const auto& b : files) {
            require(a.native() == b.native() ||
                        isBefore(sorted({a, b}, temps), a, b) == isBefore(order, a, b),
                    "two files stand as they do with a third");
        }
    }
}

} // namespace velmora::fuzz
