#include "measure/formats/WavDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Chunks.h"
#include "measure/bytes/Magic.h"
#include "measure/formats/WaveFormat.h"

#include <algorithm>

namespace velmora {

namespace {

// The chunks are walked until the data come: "fmt " tells how many bytes make a second. Where the data end is
// what their header states, unless that is a placeholder, more than the file holds, or the size without the
// multiples of 4 GB that do not fit into 32 bits.
//
// RIFF (Microsoft and IBM, "Multimedia Programming Interface and Data Specifications 1.0", chapter 2):
//
//   offset  size  field
//        0     4  "RIFF"; "RIFX" if the highest byte of a number comes first; "RF64", "BW64" with "ds64"
//        4     4  size of what follows
//        8     4  "WAVE"
//       12        chunks: name (4), size of the content (4), content, filled up to an even size
//
// "fact" (the same, chapter 3): 0 frames of one channel (4).
//
// "ds64" (EBU Tech 3306, section 3; ITU-R BS.2088, section 6), for the sizes that do not fit into 32 bits:
//
//   offset  size  field
//        0     8  size of the file less 8
//        8     8  size of the data
//       16     8  frames
//
// Wave64 (Sony Media Software, "Sony Wave64 File Format"): names are GUIDs, which begin with the four letters
// of the RIFF name; all sizes count their header.
//
//   offset  size  field
//        0    16  "riff" and 12 bytes
//       16     8  size of the file
//       24    16  "wave" and 12 bytes
//       40        chunks: name (16), size of header and content (8), content, filled up to a multiple of 8

constexpr std::int64_t riffHeaderBytes = 12;
constexpr std::size_t riffSizeAt = 4;
constexpr std::int64_t riffSizeFrom = 8; // the first byte that the size counts
constexpr std::int64_t wrap = 1LL << 32;
constexpr std::size_t longDataAt = 8;
constexpr std::size_t longDataBytes = 8;
constexpr std::size_t formatBytes = 28; // as much of "fmt " as is looked at

constexpr std::int64_t wave64HeaderBytes = 40;
constexpr ChunkLayout wave64Chunks{.sizeAt = 16, .sizeBytes = 8, .countsHeader = true, .alignment = 8};

constexpr ChunkLayout riffChunks(SizeOrder order) {
    return {.order = order, .alignment = 2};
}

/// What was learnt of the file before its data.
struct WavState {
    std::int64_t start = 0;
    SizeOrder order = SizeOrder::lowestByteFirst;
    std::int64_t riffBytes = 0;
    std::optional<WaveFormat> format;
    std::optional<std::int64_t> statedFrames;
    std::optional<std::int64_t> longDataBytes; ///< of "ds64"

    bool isBigEndian() const { return order == SizeOrder::highestByteFirst; }

    std::uint32_t u32(std::span<const std::uint8_t> bytes, std::size_t at) const {
        return isBigEndian() ? be32(bytes, at) : le32(bytes, at);
    }
};

/// True for what a writer that cannot know the size puts in its place: about the largest number of 31 or 32
/// bits.
bool isUnknown(std::uint32_t size) {
    constexpr std::uint32_t highestBit = 0x8000'0000;
    constexpr std::uint32_t minPlaceholder = 0xFFFF'F000;
    return (size | highestBit) >= minPlaceholder;
}

/// The same for a size of 64 bits: absent if it is 0, or more than any disk holds.
std::optional<std::int64_t> credibleBytes(std::uint64_t size) {
    constexpr std::uint64_t limit = 1ULL << 46; // frames of 16 bits a byte still fit into 63 bits
    return size > 0 && size < limit ? std::optional(static_cast<std::int64_t>(size)) : std::nullopt;
}

/// Whether `at` looks like the beginning of a chunk: a name of letters, and a size that fits into the file.
bool isChunkAt(GuardedReader& reader, std::int64_t at) {
    const auto chunk = chunkAt(reader, riffChunks(SizeOrder::lowestByteFirst), at);
    const auto reversed = chunkAt(reader, riffChunks(SizeOrder::highestByteFirst), at);
    return chunk && reversed && (!chunk->isCutOff() || !reversed->isCutOff()) &&
           std::ranges::all_of(chunk->name, [](char c) { return c >= ' ' && c < 0x7F; });
}

/// The content of `chunk`, which is called "data".
WaveData dataOf(GuardedReader& reader, const WavState& state, const Chunk& chunk) {
    const auto stated = static_cast<std::uint32_t>(chunk.stated);
    const std::int64_t rest = reader.size() - chunk.content;
    WaveData data{chunk.content, reader.size(), std::nullopt, state.statedFrames};
    if (isUnknown(stated)) {
        data.statedBytes = state.longDataBytes;
        data.end = chunk.content + std::min(state.longDataBytes.value_or(rest), rest);
    } else if (stated != 0 || isChunkAt(reader, chunk.content)) {
        const std::int64_t riffEnd = state.start + riffSizeFrom + state.riffBytes;
        const bool isWrapped = rest >= wrap && (reader.size() - riffEnd) % wrap == 0;
        data.statedBytes = stated;
        data.end = isWrapped ? chunk.content + stated + (rest - stated) / wrap * wrap : chunk.end();
    }
    return data;
}

/// Takes note of a chunk that is not the data.
void noteChunk(GuardedReader& reader, const Chunk& chunk, WavState& state) {
    if (chunk.name == "fmt ") {
        state.format = parseWaveFormat(contentOf(reader, chunk, formatBytes), state.isBigEndian());
    } else if (chunk.name == "fact") {
        if (const auto fact = contentOf(reader, chunk, 4); fact.size() == 4) {
            state.statedFrames = state.u32(fact, 0);
        }
    } else if (chunk.name == "ds64") {
        const auto sizes = contentOf(reader, chunk, longDataAt + longDataBytes);
        if (sizes.size() == longDataAt + longDataBytes) {
            state.longDataBytes = credibleBytes(le64(sizes, longDataAt));
        }
    }
}

/// Where the chunk after `chunk` begins. Some writers leave out the byte that makes a chunk's size even.
std::int64_t nextChunkAt(GuardedReader& reader, const Chunk& chunk) {
    const bool isPadded = chunk.size % 2 == 1;
    const bool lacksPadding = isPadded && isChunkAt(reader, chunk.end()) && !isChunkAt(reader, chunk.next);
    return lacksPadding ? chunk.end() : chunk.next;
}

} // namespace

std::optional<Timing> wavDuration(GuardedReader& reader, std::int64_t start) {
    const auto riff = reader.header(start, riffHeaderBytes);
    if (riff.empty()) {
        return std::nullopt;
    }
    WavState state;
    state.start = start;
    state.order = matches(riff, "RIFX") ? SizeOrder::highestByteFirst : SizeOrder::lowestByteFirst;
    state.riffBytes = state.u32(riff, riffSizeAt);
    std::int64_t at = start + riffHeaderBytes;
    while (const auto chunk = chunkAt(reader, riffChunks(state.order), at)) {
        if (chunk->name == "data") {
            return state.format ? waveTiming(reader, *state.format, dataOf(reader, state, *chunk))
                                : std::nullopt;
        }
        noteChunk(reader, *chunk, state);
        at = nextChunkAt(reader, *chunk);
    }
    return std::nullopt;
}

std::optional<Timing> wave64Duration(GuardedReader& reader, std::int64_t start) {
    constexpr std::size_t longFactBytes = 8;
    std::optional<WaveFormat> format;
    std::optional<std::int64_t> statedFrames;
    std::int64_t at = start + wave64HeaderBytes;
    while (const auto chunk = chunkAt(reader, wave64Chunks, at)) {
        if (chunk->name == "data") {
            const WaveData data{chunk->content, chunk->end(), credibleBytes(chunk->stated), statedFrames};
            return format ? waveTiming(reader, *format, data) : std::nullopt;
        }
        if (chunk->name == "fmt ") {
            format = parseWaveFormat(contentOf(reader, *chunk, formatBytes), false);
        } else if (chunk->name == "fact") {
            if (const auto fact = contentOf(reader, *chunk, longFactBytes); fact.size() == longFactBytes) {
                statedFrames = static_cast<std::int64_t>(le64(fact, 0)); // a negative one fits nothing
            }
        }
        at = chunk->next;
    }
    return std::nullopt;
}

} // namespace velmora
