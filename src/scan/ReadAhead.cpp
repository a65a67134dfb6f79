#include "scan/ReadAhead.h"

#include <sys/stat.h>

#include <algorithm>
#include <mutex>
#include <tuple>
#include <vector>

namespace velmora {

namespace {

struct Placed {
    dev_t device;
    ino_t inode;
    const FilePath* file;
};

/// Looks `files` up; the result holds those that are there.
std::vector<Placed> placesOf(const FilePaths& files, const std::stop_token& stop) {
    std::vector<Placed> placed;
    for (const FilePath& file : files) {
        struct stat status {};

        if (!stop.stop_requested() && ::stat(file.native().c_str(), &status) == 0) {
            placed.push_back({status.st_dev, status.st_ino, &file});
        }
    }
    return placed;
}

} // namespace

void ReadAhead::ask(const FilePaths& files, const std::stop_token& stop) const {
    if (files.empty()) {
        return;
    }
    const WorthAsking asked = std::max(worth(files.front()), worth(files.back()));
    if (asked == WorthAsking::nothing) {
        return;
    }
    if (asked == WorthAsking::names) {
        placesOf(files, stop);
        return;
    }
    static std::mutex oneSweep; // of the disk's heads
    const std::lock_guard guard(oneSweep);
    std::vector<Placed> places = placesOf(files, stop);
    std::ranges::sort(places, {}, [](const Placed& one) { return std::tuple(one.device, one.inode); });
    for (const Placed& next : places) {
        if (stop.stop_requested()) {
            return;
        }
        askFor(*next.file);
    }
}

} // namespace velmora
