#include "scan/ScanDetails.h"

namespace velmora {

std::filesystem::path ScanDetails::shownPath(const std::filesystem::path& path) const {
    const std::string& text = path.native();
    for (std::size_t slash = text.find('/', 1); slash != std::string::npos;
         slash = text.find('/', slash + 1)) {
        const auto archive = archiveOf.find(text.substr(0, slash));
        if (archive != archiveOf.end()) {
            return shownPath(archive->second) / text.substr(slash + 1);
        }
    }
    return path;
}

} // namespace velmora
