#include "scan/Missing.h"

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

} // namespace velmora
