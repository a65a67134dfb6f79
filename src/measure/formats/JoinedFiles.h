#pragma once

// Files that were joined end to end, `cat one two > three`, and still begin anew where they were joined: a
// demuxer tells of the first alone, or of what it makes of the second's header.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace velmora {

/// The sum of the files in `reader` from byte `start` on. `endOf(start)` says where the one that begins at
/// `start` ends, after `start`; `read(part, start)` times it, in a reader that ends there. A file that cannot
/// be timed ends the sum; absent if it is the first.
template <typename EndOf, typename Read>
std::optional<Timing> joinedTiming(GuardedReader& reader, std::int64_t start, EndOf endOf, Read read) {
    std::optional<Timing> sum;
    while (start < reader.size()) {
        ByteSource source = reader.source();
        source.size = endOf(start);
        const std::int64_t end = source.size;
        GuardedReader part(std::move(source), reader.stop());
        part.setBounds(reader.bounds());
        const std::optional<Timing> timing = read(part, start);
        reader.setBounds(part.bounds());
        if (!timing) {
            return sum;
        }
        if (!sum) {
            sum = timing;
        } else {
            sum->seconds += timing->seconds;
            sum->frames += timing->frames;
            sum->stated =
                sum->stated && timing->stated ? std::optional(*sum->stated + *timing->stated) : std::nullopt;
        }
        start = end;
    }
    return sum;
}

} // namespace velmora
