#include "scan/ScanDetails.h"

#include "system/FileName.h"

namespace velmora {

std::filesystem::path ScanDetails::shownPath(const std::filesystem::path& path) const {
    const std::string& text = path.native();
    if (const auto archive = archiveOf.find(text); archive != archiveOf.end()) {
        return shownPath(archive->second);
    }
    for (const std::string_view folder : parentFolders(text)) {
        const auto archive = archiveOf.find(std::string(folder));
        if (archive != archiveOf.end()) {
            return shownPath(archive->second) / text.substr(folder.size() + 1);
        }
    }
    return path;
}

} // namespace velmora
