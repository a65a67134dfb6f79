// Tags before and after audio.

#include "fuzz/Targets.h"
#include "measure/bytes/AudioTags.h"

#include <algorithm>

namespace velmora::fuzz {

void fuzzTags(Bytes bytes) {
    if (bytes.size() >= id3HeaderBytes) {
        require(id3TagBytes(bytes.first(id3HeaderBytes)).value_or(1) > 0, "a tag has bytes");
    }
    require(tagBytesAt(bytes) >= 0, "a tag has no fewer than 0 bytes");

    GuardedReader reader(sourceOf(bytes), {});
    const std::int64_t start = skipLeadingTags(reader);
    require(start >= 0, "leading tags begin at the start");
    require(start == skipLeadingTags(reader), "leading tags are the same the second time");
    const std::int64_t end = findTrailingTags(reader, start);
    require(end <= reader.size(), "trailing tags lie within the file");
    require(end >= std::min(start, reader.size()), "trailing tags come after leading ones");
}

} // namespace velmora::fuzz
