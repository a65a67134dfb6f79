#include "gather/Gathering.h"

#include "gather/ScanOrder.h"
#include "gather/SourceWalker.h"
#include "system/Paths.h"

#include <cerrno>
#include <new>
#include <utility>

namespace velmora::Collector {

GatherResult gather(const PathList& paths, const std::stop_token& stop, const Unpacking& unpacking) {
    GatherResult found;
    for (const std::filesystem::path& path : paths) {
        try {
            walk(path, 0, found, stop, unpacking);
        } catch (const std::bad_alloc&) { // what it holds is not all found
            found.unreadableFolders.push_back({path, ENOMEM});
        }
    }
    sortScanOrder(found.files, found.temps);
    return found;
}

} // namespace velmora::Collector
