#include "scan/Missing.h"

#include <algorithm>
#include <system_error>

namespace velmora {

Missing missing(const UnreadableFolder& folder) {
    return {folder.path, std::generic_category().message(folder.error)};
}

Missing missing(const SkippedArchive& archive) {
    return {archive.path, std::string(wordsFor(archive.why))};
}

Missing missing(const Measured& file) {
    return {file.url, std::string(wordsFor(file.why.value_or(Reason::cannotBeRead)))};
}

std::optional<Missing> firstMissing(const ScanDetails& details) {
    if (!details.unreadableFolders.empty()) {
        return missing(details.unreadableFolders.front());
    }
    if (!details.skippedArchives.empty()) {
        return missing(details.skippedArchives.front());
    }
    const auto file =
        std::ranges::find_if(details.files, [](const Measured& each) { return each.seconds < 0; });
    return file == details.files.end() ? std::nullopt : std::optional(missing(*file));
}

} // namespace velmora
