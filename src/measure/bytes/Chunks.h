#pragma once

// The chunks that many containers are made of: a name, the size of the content, the content. A format says
// once how its chunk headers are laid out; its reader is then a loop with one case a name:
//
//     for (auto chunk = chunkAt(reader, layout, at); chunk; chunk = chunkAt(reader, layout, chunk->next)) {
//         if (chunk->name == "COMM") {
//
// A reader that steps into a chunk, or knows better where the next one begins, sets `next`. The boxes of MP4
// (size first, bounded by their parent) and the elements of Matroska are read by files of their own.

#include "measure/bytes/GuardedReader.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace velmora {

enum class SizeOrder : std::uint8_t { lowestByteFirst, highestByteFirst };

/// A chunk header begins with the name; all but the name may differ from format to format.
struct ChunkLayout {
    std::size_t nameBytes = 4; ///< of the name, as much as is looked at
    std::size_t sizeAt = 4;
    std::size_t sizeBytes = 4; ///< at most 8; the header ends with them
    SizeOrder order = SizeOrder::lowestByteFirst;
    bool countsHeader = false;  ///< the size is that of header and content
    std::int64_t alignment = 1; ///< the content is filled up to a multiple of this

    std::size_t headerBytes() const { return sizeAt + sizeBytes; }
};

struct Chunk {
    static constexpr std::uint64_t unknownSize = ~std::uint64_t{0};

    std::string name;
    std::int64_t content = 0; ///< where the content begins, within the file
    std::uint64_t stated = 0; ///< bytes of content; `unknownSize` for less than the header counts
    std::int64_t size = 0;    ///< bytes of content that the file holds
    std::int64_t next = 0;    ///< where the next chunk begins

    std::int64_t end() const { return content + size; }

    bool isCutOff() const { return stated > static_cast<std::uint64_t>(size); }
};

/// The chunk whose header stands at `at`; absent if the file ends before its header does, or the search is
/// over.
std::optional<Chunk> chunkAt(GuardedReader& reader, const ChunkLayout& layout, std::int64_t at);

/// The first `count` bytes of the content of `chunk`, or fewer if it has fewer.
std::span<const std::uint8_t> contentOf(GuardedReader& reader, const Chunk& chunk, std::size_t count);

} // namespace velmora
