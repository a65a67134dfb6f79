#include "measure/formats/RealMediaDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"
#include "measure/formats/JoinedFiles.h"
#include "measure/libav/Libav.h"

#include <algorithm>

namespace velmora {

namespace {

// A file is a row of chunks, ".RMF" first, then "PROP", "MDPR", "DATA" and others. Each begins with:
//
//   offset  size  field
//        0     4  name
//        4     4  size, with these eight bytes, the highest first
//        8     2  version

constexpr std::size_t chunkHeaderBytes = 10;
constexpr std::size_t sizeAt = 4;
constexpr std::string_view firstChunk(".RMF\0\0\0?\0?", 10);

/// Writers state the size of "DATA" only roughly, so that what follows may begin this much earlier or later.
constexpr std::int64_t slack = 64;

/// Where the next file begins, at `at` or about there; absent if none does.
std::optional<std::int64_t> fileAbout(GuardedReader& reader, std::int64_t at) {
    const std::int64_t first = std::max<std::int64_t>(0, at - slack);
    auto bytes = reader.headerUpTo(first, 2 * slack + chunkHeaderBytes);
    for (std::int64_t file = first; !bytes.empty(); ++file, bytes = bytes.subspan(1)) {
        if (matches(bytes, firstChunk)) {
            return file;
        }
    }
    return std::nullopt;
}

std::int64_t endOfRealMedia(GuardedReader& reader, std::int64_t start) {
    std::int64_t at = start;
    for (;;) {
        const auto header = reader.header(at, chunkHeaderBytes);
        const std::int64_t size = header.empty() ? 0 : be32(header, sizeAt);
        if (size < static_cast<std::int64_t>(chunkHeaderBytes)) {
            return reader.size();
        }
        const bool isData = matches(header, "DATA");
        at += size;
        const auto next = isData ? fileAbout(reader, at) : std::nullopt;
        if (next && *next > start) {
            return *next;
        }
        if (matches(reader.header(at, chunkHeaderBytes), firstChunk)) {
            return at;
        }
    }
}

} // namespace

std::optional<Timing> realMediaDuration(GuardedReader& reader, std::int64_t start) {
    return joinedTiming(
        reader, start, [&reader](std::int64_t at) { return endOfRealMedia(reader, at); },
        [](GuardedReader& part, std::int64_t at) {
            return libav().duration(part, at, "rm", Doubt::unfinished);
        });
}

} // namespace velmora
