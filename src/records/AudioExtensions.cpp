#include "records/AudioExtensions.h"

#include <algorithm>

namespace velmora::Collector {

bool isAudio(std::string_view extension) {
    return std::ranges::find(audioExts, extension) != audioExts.end();
}

bool isArchive(std::string_view extension) {
    return std::ranges::find(archiveExts, extension) != archiveExts.end();
}

bool isUncompressed(std::string_view extension) {
    return std::ranges::find(uncompressedExts, extension) != uncompressedExts.end();
}

} // namespace velmora::Collector
