#include "measure/bytes/Chunks.h"

#include <algorithm>

namespace velmora {

namespace {

std::uint64_t statedSize(std::span<const std::uint8_t> size, SizeOrder order) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size.size(); ++i) {
        value = value << 8 | size[order == SizeOrder::highestByteFirst ? i : size.size() - 1 - i];
    }
    return value;
}

} // namespace

std::optional<Chunk> chunkAt(GuardedReader& reader, const ChunkLayout& layout, std::int64_t at) {
    const auto header = reader.header(at, layout.headerBytes());
    if (header.empty()) {
        return std::nullopt;
    }
    Chunk chunk;
    chunk.name.assign(header.begin(), header.begin() + static_cast<std::ptrdiff_t>(layout.nameBytes));
    chunk.stated = statedSize(header.subspan(layout.sizeAt, layout.sizeBytes), layout.order);
    if (layout.countsHeader) {
        const bool isCredible = chunk.stated >= layout.headerBytes();
        chunk.stated = isCredible ? chunk.stated - layout.headerBytes() : Chunk::unknownSize;
    }
    chunk.content = at + static_cast<std::int64_t>(layout.headerBytes());
    const std::int64_t rest = reader.size() - chunk.content;
    chunk.size = static_cast<std::int64_t>(std::min(chunk.stated, static_cast<std::uint64_t>(rest)));
    chunk.next = chunk.content + (chunk.size + layout.alignment - 1) / layout.alignment * layout.alignment;
    return chunk;
}

std::span<const std::uint8_t> contentOf(GuardedReader& reader, const Chunk& chunk, std::size_t count) {
    const auto content = reader.headerUpTo(chunk.content, count, chunk.end());
    if (content.size() < count && static_cast<std::uint64_t>(chunk.size) < chunk.stated) {
        reader.noteCutOff();
    }
    return content;
}

} // namespace velmora
