#include "gather/Gathering.h"

#include "gather/ScanOrder.h"
#include "gather/SourceWalker.h"
#include "system/Paths.h"

#include <cerrno>
#include <new>
#include <utility>

namespace velmora::Collector {

namespace fs = std::filesystem;

GatherResult gather(const PathList& paths, const std::stop_token& stop, const Unpacking& unpacking) {
    GatherResult found;
    const auto gatherOne = [&](const fs::path& path, const fs::path& next) {
        try {
            walk(path, 0, found, stop, unpacking, next);
        } catch (const std::bad_alloc&) { // what it holds is not all found
            found.unreadableFolders.push_back({path, ENOMEM});
        }
    };
    fs::path path;
    for (const fs::path& next : paths) {
        if (!path.empty()) {
            gatherOne(path, next);
        }
        path = next;
    }
    gatherOne(path, {});
    sortScanOrder(found.files, found.temps);
    return found;
}

} // namespace velmora::Collector
