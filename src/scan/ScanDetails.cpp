#include "scan/ScanDetails.h"

#include "system/FileName.h"

#include <optional>
#include <string_view>

namespace velmora {

namespace {

/// Out of which archive something came, and where it lies in there.
struct Origin {
    const std::filesystem::path& archive;
    std::string_view inside; ///< with a "/" before it; "" for the extraction directory itself
};

std::optional<Origin> originOf(const std::string& path, const ScanDetails& details) {
    if (details.archiveOf.empty()) {
        return std::nullopt;
    }
    if (const auto archive = details.archiveOf.find(path); archive != details.archiveOf.end()) {
        return Origin{archive->second, {}};
    }
    for (const std::string_view folder : parentFolders(path)) {
        const auto archive = details.archiveOf.find(std::string(folder));
        if (archive != details.archiveOf.end()) {
            return Origin{archive->second, std::string_view(path).substr(folder.size())};
        }
    }
    return std::nullopt;
}

} // namespace

std::filesystem::path ScanDetails::shownPath(const std::filesystem::path& path) const {
    return shownName(path.native());
}

std::string ScanDetails::shownName(const std::string& path) const {
    const std::optional<Origin> origin = originOf(path, *this);
    return origin ? shownName(origin->archive.native()).append(origin->inside) : path;
}

std::filesystem::path ScanDetails::placeOf(const std::filesystem::path& path) const {
    const std::optional<Origin> origin = originOf(path.native(), *this);
    return origin ? placeOf(origin->archive) : path;
}

} // namespace velmora
