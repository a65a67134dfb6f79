#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Chunks.h"
#include "measure/check/FormatChecks.h"
#include "measure/formats/AsfDuration.h"

#include <algorithm>
#include <string_view>

namespace velmora {

namespace {

using namespace std::string_view_literals;

// Objects stand one after the other: the header (formats/AsfDuration.h), the data, indices. The data are
// packets of one size, which all begin alike (Microsoft, "Advanced Systems Format Specification", section 5).
//
// Data object:
//
//   offset  size  field
//        0    16  object GUID, 36 26 B2 75 8E 66 CF 11 A6 D9 00 AA 00 62 CE 6C
//       16     8  object size
//       24    16  file ID
//       40     8  packets
//       48     2  reserved
//       50        the packets, each of which begins with flags; bit 7: data to correct errors with come first

constexpr ChunkLayout objects{.nameBytes = 16, .sizeAt = 16, .sizeBytes = 8, .countsHeader = true};
constexpr std::string_view dataName = "\x36\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C"sv;
constexpr std::int64_t packetCountAt = 16; // of the content
constexpr std::int64_t packetsAt = 26;
constexpr std::uint8_t comesWithCorrection = 0x80;

/// The objects of one file.
struct Objects {
    std::optional<Chunk> data;
    std::int64_t end = 0; ///< of the last one
};

Objects walkObjects(GuardedReader& reader, std::int64_t start) {
    Objects found{.data = {}, .end = start};
    while (const auto object = chunkAt(reader, objects, found.end)) {
        const bool isOther = found.end > start && formatAt(reader, found.end) != nullptr; // a second file
        const bool isData = object->name == dataName;
        if (isOther || object->stated == Chunk::unknownSize || (object->isCutOff() && !isData)) {
            break;
        }
        found.data = isData ? object : found.data;
        found.end = object->next;
    }
    return found;
}

/// Whether each packet begins as the first one does.
bool areAlike(GuardedReader& reader, const Chunk& data, std::int64_t packetBytes) {
    std::optional<std::uint8_t> first;
    for (std::int64_t at = data.content + packetsAt; at < data.end(); at += packetBytes) {
        const auto flags = reader.header(at, 1);
        if (flags.empty()) {
            break;
        }
        first = first.value_or(flags[0]);
        if (((flags[0] ^ *first) & comesWithCorrection) != 0) {
            return false;
        }
    }
    return true;
}

} // namespace

std::int64_t checkAsf(Examination& file, std::int64_t start) {
    GuardedReader header = file.header();
    const Objects found = walkObjects(header, start);
    const auto count =
        found.data ? header.header(found.data->content + packetCountAt, 8) : std::span<const std::uint8_t>();
    const std::uint64_t packets = count.empty() ? 0 : le64(count, 0);
    if (packets == 0 || packets > found.data->stated) { // a live stream does not state them
        return start;
    }
    const auto stated = HeaderDuration::asfSeconds(header.source());
    const double there = static_cast<double>(found.data->size) / static_cast<double>(found.data->stated);
    const Lengths lengths{.stated = stated, .found = stated ? std::optional(*stated * there) : std::nullopt};
    if (found.data->isCutOff()) {
        file.note(FindingKind::truncated, lengths);
    } else {
        checkRest(file, found.end, file.size(), lengths);
    }
    const auto packetBytes = static_cast<std::int64_t>((found.data->stated - packetsAt) / packets);
    const bool isCredible = packetBytes > 0 && packetBytes <= found.data->size;
    if (isCredible && !areAlike(file.whole(), *found.data, packetBytes)) {
        file.note(FindingKind::damaged, {.stated = stated, .found = {}});
    }
    return start;
}

} // namespace velmora
