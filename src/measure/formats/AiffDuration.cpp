#include "measure/formats/AiffDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Chunks.h"
#include "measure/bytes/Magic.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// The chunks are walked in whatever order they come until both "COMM" and "SSND" were seen. The frames that
// "COMM" states count, as far as the bytes of "SSND" hold them.
//
// File (Apple, "Audio Interchange File Format" 1.3, section "FORM AIFF"), the highest byte of a number first:
//
//   offset  size  field
//        0     4  "FORM"
//        4     4  size of what follows
//        8     4  "AIFF" or "AIFC"
//       12        chunks: name (4), size of the content (4), content, filled up to an even size
//
// "COMM" (section "The Common Chunk"; the compression in the draft of AIFF-C):
//
//   offset  size  field
//        0     2  channels
//        2     4  frames; or packets, for some writers of compressed sound
//        6     2  bits of a sample
//        8    10  frames a second (80-bit extended)
//       18     4  compression (AIFF-C)
//
// "SSND" (section "The Sound Data Chunk"):
//
//   offset  size  field
//        0     4  offset of the first frame
//        4     4  block size
//        8        frames

constexpr std::int64_t formHeaderBytes = 12;
constexpr ChunkLayout iffChunks{.order = SizeOrder::highestByteFirst, .alignment = 2};

constexpr std::size_t channelsAt = 0;
constexpr std::size_t framesAt = 2;
constexpr std::size_t bitsAt = 6;
constexpr std::size_t rateAt = 8;
constexpr std::size_t compressionAt = 18;
constexpr std::size_t compressionBytes = 4;

constexpr std::int64_t soundHeaderBytes = 8;

struct Common {
    std::int64_t channels = 0;
    std::int64_t frames = 0;
    double rate = 0;
    std::int64_t frameBytes = 0;  ///< without compression
    std::int64_t packetBytes = 0; ///< 0 for an unknown compression
    std::int64_t packetFrames = 1;
};

struct Sound {
    std::int64_t bytes = 0;
    bool isCutOff = false;
};

/// The packets of one channel.
struct Compression {
    std::string_view name;
    std::int64_t packetBytes; ///< 0: as many as the bits of a sample need
    std::int64_t packetFrames;
};

constexpr auto compressions = std::to_array<Compression>({
    {"NONE", 0, 1}, {"sowt", 0, 1},    {"twos", 0, 1}, {"raw ", 0, 1},    {"in24", 3, 1},   {"in32", 4, 1},
    {"23ni", 4, 1}, {"42ni", 3, 1},    {"fl32", 4, 1}, {"FL32", 4, 1},    {"fl64", 8, 1},   {"FL64", 8, 1},
    {"ulaw", 1, 1}, {"ULAW", 1, 1},    {"alaw", 1, 1}, {"ALAW", 1, 1},    {"ima4", 34, 64}, {"MAC3", 2, 6},
    {"MAC6", 1, 6}, {"GSM ", 33, 160}, {"G722", 1, 2}, {"Qclp", 35, 160},
});

/// A number of 80 bits: sign (1), exponent (15), mantissa with its leading one (64).
double extended(Bytes bytes, std::size_t at) {
    constexpr int exponentBias = 16383;
    constexpr int mantissaBits = 63; // after the leading one
    constexpr std::size_t mantissaAt = 2;
    const int exponent = be16(bytes, at) & 0x7FFF;
    return std::ldexp(static_cast<double>(be64(bytes, at + mantissaAt)),
                      exponent - exponentBias - mantissaBits);
}

std::optional<Common> parseCommon(Bytes chunk) {
    if (chunk.size() < compressionAt) {
        return std::nullopt;
    }
    Common common{be16(chunk, channelsAt), be32(chunk, framesAt), extended(chunk, rateAt)};
    common.frameBytes = (be16(chunk, bitsAt) + 7) / 8 * common.channels;
    if (common.channels == 0 || !(common.rate >= 1) || !std::isfinite(common.rate)) {
        return std::nullopt;
    }
    const bool isCompressed = chunk.size() >= compressionAt + compressionBytes;
    const auto* const row = std::ranges::find_if(compressions, [&](const Compression& compression) {
        return matches(isCompressed ? chunk.subspan(compressionAt) : Bytes(), compression.name);
    });
    if (row != compressions.end() && row->packetBytes > 0) {
        common.packetBytes = row->packetBytes * common.channels;
        common.packetFrames = row->packetFrames;
    } else if (row != compressions.end() || !isCompressed) {
        common.packetBytes = common.frameBytes;
    }
    return common;
}

std::optional<Timing> soundTiming(const Common& common, const Sound& sound) {
    const double stated = static_cast<double>(common.frames) / common.rate;
    if (common.packetBytes == 0) {
        // Frames of more bytes than without any compression are a count of packets; and a byte holds not more
        // than any coder makes of one.
        constexpr std::int64_t maxFramesInByte = 1'000;
        const bool isCredible =
            sound.bytes <= common.frames * common.frameBytes && common.frames / maxFramesInByte < sound.bytes;
        return isCredible && !sound.isCutOff ? std::optional(statedTiming(stated)) : std::nullopt;
    }
    const std::int64_t frames =
        std::max<std::int64_t>(0, sound.bytes / common.packetBytes * common.packetFrames);
    const double there = static_cast<double>(frames) / common.rate;
    if (common.packetFrames > 1) { // what is stated may be frames or packets, as the writer chose
        return Timing{.seconds = there,
                      .basis = Basis::sized,
                      .doubt = sound.isCutOff ? Doubt::beyondEnd : Doubt::none};
    }
    // A writer that cannot go back states 0 or too much.
    return withinFile(common.frames > 0 ? std::optional(stated) : std::nullopt,
                      {.seconds = there, .basis = Basis::sized});
}

/// Whether a chunk stands at `at`, and all of it: what would be samples there is none.
bool isChunk(GuardedReader& reader, std::int64_t at) {
    const auto chunk = chunkAt(reader, iffChunks, at);
    return chunk && !chunk->isCutOff() &&
           std::ranges::all_of(chunk->name, [](char letter) { return letter >= ' ' && letter <= '~'; });
}

/// The sound in `chunk`, which is called "SSND". A writer that cannot go back states no size.
Sound soundOf(GuardedReader& reader, const Chunk& chunk) {
    const std::int64_t rest = reader.size() - chunk.content;
    const bool isUnknown =
        chunk.stated <= static_cast<std::uint64_t>(soundHeaderBytes) && !isChunk(reader, chunk.next);
    Sound sound{(isUnknown ? rest : chunk.size) - soundHeaderBytes, chunk.isCutOff()};
    if (const Bytes head = reader.header(chunk.content, soundHeaderBytes); !head.empty()) {
        sound.bytes -= be32(head, 0);
    }
    return sound;
}

} // namespace

std::optional<Timing> aiffDuration(GuardedReader& reader, std::int64_t start) {
    std::optional<Common> common;
    std::optional<Sound> sound;
    std::int64_t at = start + formHeaderBytes;
    while (!common || !sound) {
        const auto chunk = chunkAt(reader, iffChunks, at);
        if (!chunk) {
            break;
        }
        if (chunk->name == "COMM") {
            common = parseCommon(contentOf(reader, *chunk, compressionAt + compressionBytes));
        } else if (chunk->name == "SSND") {
            sound = soundOf(reader, *chunk);
        }
        at = chunk->next;
    }
    return common ? sampled(soundTiming(*common, sound.value_or(Sound())),
                            samplingOf(common->rate, common->channels))
                  : std::nullopt;
}

} // namespace velmora
