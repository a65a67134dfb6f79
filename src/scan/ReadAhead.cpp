#include "scan/ReadAhead.h"

#include <sys/stat.h>

#include <algorithm>
#include <tuple>
#include <vector>

namespace velmora {

namespace {

struct Placed {
    dev_t device;
    ino_t inode;
    const FilePath* file;
};

/// Those of `files` that are there, by device and inode.
std::vector<Placed> byInode(const FilePaths& files, const std::stop_token& stop) {
    std::vector<Placed> placed;
    for (const FilePath& file : files) {
        struct stat status {};

        if (!stop.stop_requested() && ::stat(file.native().c_str(), &status) == 0) {
            placed.push_back({status.st_dev, status.st_ino, &file});
        }
    }
    std::ranges::sort(placed, {}, [](const Placed& one) { return std::tuple(one.device, one.inode); });
    return placed;
}

} // namespace

void ReadAhead::ask(const FilePaths& files, const std::stop_token& stop) const {
    if (files.empty() || (!pays(files.front()) && !pays(files.back()))) {
        return;
    }
    for (const Placed& next : byInode(files, stop)) {
        if (stop.stop_requested()) {
            return;
        }
        askFor(*next.file);
    }
}

} // namespace velmora
