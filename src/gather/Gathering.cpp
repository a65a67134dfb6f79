#include "gather/Gathering.h"

#include "gather/ScanOrder.h"
#include "gather/SourceWalker.h"
#include "system/Paths.h"

namespace velmora::Collector {

GatherResult gather(const Paths& paths, const std::stop_token& stop) {
    GatherResult found;
    for (const std::filesystem::path& path : paths) {
        walk(path, 0, found, stop);
    }
    sortScanOrder(found.files, found.temps);
    return found;
}

} // namespace velmora::Collector
