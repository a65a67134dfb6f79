#include "measure/bytes/AudioTags.h"
#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Crc.h"
#include "measure/bytes/Magic.h"
#include "measure/bytes/SlidingWindow.h"
#include "measure/check/FormatChecks.h"
#include "measure/formats/MusepackPacket.h"

#include <algorithm>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Packets stand one directly after the other, from "MPCK" to the packet "SE". Only the stream header, "SH",
// holds a checksum: of what stands in it after its first four bytes, which hold it.

constexpr std::int64_t magicBytes = 4;
constexpr std::size_t checksumBytes = 4;
constexpr std::size_t packetHeadBytes = 64; ///< more than "SH" takes

struct PacketWalk {
    std::optional<MusepackStream> stream;
    std::int64_t samples = 0; ///< of the audio packets, the last of which need not be full
    std::int64_t end = 0;     ///< of the last packet, in the file
    bool hasItsEnd = false;
    bool isDamaged = false;
};

/// Whether the stream header in `content` holds its checksum.
bool holdsChecksum(Bytes content) {
    return content.size() > checksumBytes && be32(content, 0) == Crc32::of(content.subspan(checksumBytes));
}

/// The packet at `at` with as much of its content as a stream header takes.
std::optional<MusepackPacket> packetAt(SlidingWindow& window, std::int64_t at) {
    const Bytes bytes = window.from(at, packetHeadBytes);
    auto packet = parseMusepackPacket(bytes);
    if (packet) {
        const auto head = static_cast<std::int64_t>(bytes.size() - packet->content.size());
        const auto left = std::clamp<std::int64_t>(packet->bytes - head, 0, std::ssize(packet->content));
        packet->content = packet->content.first(static_cast<std::size_t>(left));
    }
    return packet;
}

PacketWalk walkPackets(GuardedReader& reader, std::int64_t start, std::int64_t end) {
    SlidingWindow window(reader, end);
    PacketWalk walk{.stream = {}, .end = start};
    while (!walk.hasItsEnd) {
        const auto packet = packetAt(window, walk.end);
        const Bytes key = window.from(walk.end, 2);
        if (!packet || packet->bytes > window.end() - walk.end) {
            walk.isDamaged = !packet && walk.end < window.end();
            break;
        }
        if (matches(key, "SH")) {
            walk.isDamaged |= !holdsChecksum(packet->content);
            walk.stream = parseMusepackStream(packet->content);
        } else if (matches(key, "AP")) {
            walk.samples += walk.stream ? walk.stream->packetSamples : 0;
        }
        walk.hasItsEnd = matches(key, "SE");
        walk.end += packet->bytes;
    }
    return walk;
}

} // namespace

std::int64_t checkMusepack(Examination& file, std::int64_t start) {
    GuardedReader header = file.header();
    const std::int64_t tagsAt = findTrailingTags(header, start);
    const PacketWalk walk = walkPackets(file.whole(), start + magicBytes, tagsAt);
    if (!walk.stream) {
        return start;
    }
    const auto secondsOf = [&](std::int64_t samples) {
        return static_cast<double>(std::max<std::int64_t>(0, samples - walk.stream->silence)) /
               walk.stream->rate;
    };
    const std::int64_t statedSamples = walk.stream->samples;
    const bool isAll = walk.hasItsEnd && walk.samples >= statedSamples &&
                       walk.samples < statedSamples + 2 * walk.stream->packetSamples;
    Lengths lengths;
    lengths.stated = statedSamples > 0 ? std::optional(secondsOf(statedSamples)) : std::nullopt;
    lengths.found = lengths.stated && isAll ? lengths.stated : secondsOf(walk.samples);
    if (!walk.hasItsEnd && !walk.isDamaged) {
        lengths.found = lengths.stated ? std::min(*lengths.found, *lengths.stated) : lengths.found;
        file.note(FindingKind::truncated, lengths);
    } else if (walk.isDamaged) {
        file.note(FindingKind::damaged, lengths);
    } else {
        file.compare(lengths, paddingTolerance);
    }
    if (walk.hasItsEnd) {
        checkRest(file, walk.end, tagsAt, lengths);
    }
    return tagsAt;
}

} // namespace velmora
