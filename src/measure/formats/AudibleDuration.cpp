#include "measure/formats/AudibleDuration.h"

#include "measure/bytes/ByteOrder.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace velmora {

namespace {

// The largest block of the file but the first holds the sound: chapters, each with its size. The codec, which
// a dictionary before it names, tells the bytes of a second. The layout follows the files themselves; the
// highest byte of a number comes first.
//
//   offset  size  field
//        0     4  size of the file
//        4     4  57 90 75 36
//        8     4  blocks
//       12     4  not known
//       16        table, for each block: index (4), offset (4), size (4)
//             24  not known
//              4  pairs of the dictionary
//                 for each: not known (1), bytes of the key (4), bytes of the value (4), key, value
//
// Chapter: size of its sound (4), offset in the whole sound (4), sound.

constexpr std::size_t blocksAt = 8;
constexpr std::int64_t tableAt = 16;
constexpr std::size_t headBytes = 16;
constexpr std::size_t entryBytes = 12;
constexpr std::size_t offsetAt = 4; // in an entry
constexpr std::size_t sizeAt = 8;
constexpr std::int64_t afterTableBytes = 24;
constexpr std::size_t pairBytes = 9;
constexpr std::size_t keyBytesAt = 1; // in a pair
constexpr std::size_t valueBytesAt = 5;
constexpr std::size_t chapterBytes = 8;

struct Codec {
    std::string_view name;
    double bytesInSecond;
};

constexpr auto codecs = std::to_array<Codec>({{"mp332", 4'000}, {"acelp16", 2'000}, {"acelp85", 1'062.5}});

struct Block {
    std::int64_t at = 0;
    std::int64_t size = 0;
};

/// The block of the sound; absent if the table is cut off.
std::optional<Block> soundBlock(GuardedReader& reader, std::int64_t start, std::int64_t count) {
    Block largest;
    for (std::int64_t i = 1; i < count; ++i) {
        const auto entry =
            reader.header(start + tableAt + i * static_cast<std::int64_t>(entryBytes), entryBytes);
        if (entry.empty()) {
            return std::nullopt;
        }
        const Block block{start + be32(entry, offsetAt), be32(entry, sizeAt)};
        largest = block.size > largest.size ? block : largest;
    }
    return largest;
}

/// The codec that the dictionary at `at` names; null if none that is known.
const Codec* namedCodec(GuardedReader& reader, std::int64_t at) {
    constexpr std::size_t maxNameBytes = 16; // of the key and of the value
    const auto textAt = [&](std::int64_t offset, std::size_t size) {
        const auto bytes = reader.header(offset, std::min(size, maxNameBytes));
        return std::string(bytes.begin(), bytes.end());
    };
    const auto head = reader.header(at, 4);
    const std::int64_t pairs = head.empty() ? 0 : be32(head, 0);
    at += 4;
    for (std::int64_t i = 0; i < pairs; ++i) {
        const auto pair = reader.header(at, pairBytes);
        if (pair.empty()) {
            break;
        }
        const std::size_t keyBytes = be32(pair, keyBytesAt);
        const std::size_t valueBytes = be32(pair, valueBytesAt);
        const std::int64_t valueAt = at + static_cast<std::int64_t>(pairBytes + keyBytes);
        if (textAt(at + static_cast<std::int64_t>(pairBytes), keyBytes) == "codec") {
            const auto* const codec = std::ranges::find(codecs, textAt(valueAt, valueBytes), &Codec::name);
            return codec == codecs.end() ? nullptr : codec;
        }
        at = valueAt + static_cast<std::int64_t>(valueBytes);
    }
    return nullptr;
}

} // namespace

std::optional<Timing> audibleDuration(GuardedReader& reader, std::int64_t start) {
    const auto head = reader.header(start, headBytes);
    if (head.empty()) {
        return std::nullopt;
    }
    const std::int64_t blocks = be32(head, blocksAt);
    const auto sound = soundBlock(reader, start, blocks);
    const std::int64_t tableEnd = start + tableAt + blocks * static_cast<std::int64_t>(entryBytes);
    const Codec* const codec = sound ? namedCodec(reader, tableEnd + afterTableBytes) : nullptr;
    if (codec == nullptr) {
        return std::nullopt;
    }
    std::int64_t there = 0;
    std::int64_t headers = 0;
    std::int64_t at = sound->at;
    const std::int64_t end = std::min(sound->at + sound->size, reader.size());
    while (at < end) {
        const auto chapter = reader.header(at, chapterBytes);
        if (chapter.empty() || be32(chapter, 0) == 0) {
            break;
        }
        headers += static_cast<std::int64_t>(chapterBytes);
        at += static_cast<std::int64_t>(chapterBytes);
        const std::int64_t bytes = std::min<std::int64_t>(be32(chapter, 0), end - at);
        there += bytes;
        at += bytes;
    }
    const auto secondsOf = [codec](std::int64_t bytes) {
        return static_cast<double>(bytes) / codec->bytesInSecond;
    };
    return sizedTiming(secondsOf(there), secondsOf(sound->size - headers));
}

} // namespace velmora
