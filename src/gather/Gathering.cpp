#include "gather/Gathering.h"

#include "gather/ScanOrder.h"
#include "gather/SourceWalker.h"
#include "system/Paths.h"

namespace velmora::Collector {

GatherResult gather(const Paths& urls, const std::stop_token& stop) {
    GatherResult found;
    for (const std::filesystem::path& url : urls) {
        walk(url, 0, found, stop);
    }
    sortScanOrder(found.files, found.temps);
    return found;
}

} // namespace velmora::Collector
