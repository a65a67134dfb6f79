#include "measure/formats/Mp4Boxes.h"

#include "measure/bytes/ByteOrder.h"

#include <algorithm>

namespace velmora {

std::optional<Mp4Box> mp4BoxAt(GuardedReader& reader, std::int64_t at, std::int64_t end) {
    constexpr std::int64_t shortHeader = 8;
    constexpr std::int64_t longHeader = 16;
    if (at > end - shortHeader) {
        if (at < end && end == reader.size()) {
            reader.noteCutOff();
        }
        return std::nullopt;
    }
    const auto header = reader.header(at, shortHeader);
    if (header.empty()) {
        return std::nullopt;
    }
    Mp4Box box;
    box.type = be32(header, 4);
    std::uint64_t size = be32(header, 0);
    std::int64_t headerBytes = shortHeader;
    const auto rest = static_cast<std::uint64_t>(end - at);
    if (size == 1) {
        const auto longSize = reader.header(at, longHeader);
        if (longSize.empty()) {
            return std::nullopt;
        }
        size = be64(longSize, shortHeader);
        headerBytes = longHeader;
    } else if (size == 0) { // to the end
        size = rest;
        box.isOpen = true;
    }
    if (size < static_cast<std::uint64_t>(headerBytes)) {
        return std::nullopt;
    }
    box.isCutOff = size > rest;
    box.content = at + headerBytes;
    box.end = at + static_cast<std::int64_t>(std::min(size, rest));
    return box;
}

std::optional<Mp4Box> findMp4Box(GuardedReader& reader, const Mp4Box& parent, std::uint32_t type) {
    std::int64_t at = parent.content;
    while (const auto box = mp4BoxAt(reader, at, parent.end)) {
        if (box->type == type) {
            return box;
        }
        at = box->end;
    }
    return std::nullopt;
}

std::optional<std::uint32_t> mp4WordAt(GuardedReader& reader, const Mp4Box& box, std::int64_t at) {
    const auto bytes =
        at + 4 <= box.size() ? reader.header(box.content + at, 4) : std::span<const std::uint8_t>();
    return bytes.empty() ? std::nullopt : std::optional(be32(bytes, 0));
}

} // namespace velmora
