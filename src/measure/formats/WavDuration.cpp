#include "measure/formats/WavDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"
#include "measure/formats/WaveFormat.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace velmora {

namespace {

using namespace std::string_view_literals;

constexpr std::int64_t riffHeaderBytes = 12; // "RIFF", size of what follows, "WAVE"
constexpr std::int64_t chunkHeaderBytes = 8; // name, size of what follows
constexpr std::int64_t wrap = 1LL << 32;
constexpr std::size_t formatBytes = 26; // as much of "fmt " as is looked at

/// What was learnt of the file before its data.
struct WavState {
    bool isBigEndian = false;
    std::int64_t riffBytes = 0;
    std::optional<WaveFormat> format;
    std::optional<std::int64_t> statedFrames;
    std::optional<std::int64_t> longDataBytes; ///< of "ds64"
};

std::span<const std::uint8_t> chunkStart(GuardedReader& reader, std::int64_t at, std::int64_t size,
                                         std::size_t wanted) {
    return reader.header(at, static_cast<std::size_t>(std::clamp<std::int64_t>(
                                 std::min(size, reader.size() - at), 0, static_cast<std::int64_t>(wanted))));
}

/// What a writer that cannot know the size puts in its place: about the largest number of 31 or 32 bits.
bool isUnknown(std::uint32_t size) {
    return (size | 0x8000'0000) >= 0xFFFF'F000;
}

/// The same for a size of 64 bits: absent if it is 0, or more than any disk holds.
std::optional<std::int64_t> credibleBytes(std::uint64_t size) {
    constexpr std::uint64_t limit = 1ULL << 46;
    return size > 0 && size < limit ? std::optional(static_cast<std::int64_t>(size)) : std::nullopt;
}

/// Whether `at` looks like the beginning of a chunk: a name of letters, and a size that fits into the file.
bool isChunkAt(GuardedReader& reader, std::int64_t at) {
    const auto header = reader.header(at, chunkHeaderBytes);
    return !header.empty() &&
           std::min(le32(header, 4), be32(header, 4)) <= reader.size() - at - chunkHeaderBytes &&
           std::ranges::all_of(header.first(4), [](std::uint8_t c) { return c >= ' ' && c < 0x7F; });
}

/// The data that begin at `at`, in a chunk of `stated` bytes.
WaveData dataAt(GuardedReader& reader, const WavState& state, std::int64_t start, std::int64_t at,
                std::uint32_t stated) {
    const std::int64_t rest = reader.size() - at;
    WaveData data{at, reader.size(), std::nullopt, state.statedFrames};
    if (isUnknown(stated)) {
        data.statedBytes = state.longDataBytes;
        data.end = at + std::min(state.longDataBytes.value_or(rest), rest);
    } else if (stated != 0 || isChunkAt(reader, at)) {
        const std::int64_t riffEnd = start + chunkHeaderBytes + state.riffBytes;
        const bool isWrapped = rest >= wrap && (reader.size() - riffEnd) % wrap == 0;
        data.statedBytes = stated;
        data.end =
            at + std::min(rest, isWrapped ? stated + (rest - stated) / wrap * wrap : std::int64_t{stated});
    }
    return data;
}

/// Takes note of a chunk that is not the data.
void noteChunk(GuardedReader& reader, std::string_view name, std::int64_t at, std::int64_t size,
               WavState& state) {
    constexpr std::size_t longDataAt = 8; // "ds64": 0 size of the file, 8 size of the data, 16 frames
    if (name == "fmt "sv) {
        state.format = parseWaveFormat(chunkStart(reader, at, size, formatBytes), state.isBigEndian);
    } else if (name == "fact"sv) {
        if (const auto fact = chunkStart(reader, at, size, 4); fact.size() == 4) {
            state.statedFrames = state.isBigEndian ? be32(fact, 0) : le32(fact, 0);
        }
    } else if (name == "ds64"sv) {
        if (const auto sizes = chunkStart(reader, at, size, longDataAt + 8); sizes.size() == longDataAt + 8) {
            state.longDataBytes = credibleBytes(le64(sizes, longDataAt));
        }
    }
}

} // namespace

std::optional<Timing> wavDuration(GuardedReader& reader, std::int64_t start) {
    const auto riff = reader.header(start, riffHeaderBytes);
    if (riff.empty()) {
        return std::nullopt;
    }
    WavState state;
    state.isBigEndian = matches(riff, "RIFX");
    const auto u32 = [&state](std::span<const std::uint8_t> bytes, std::size_t index) {
        return state.isBigEndian ? be32(bytes, index) : le32(bytes, index);
    };
    state.riffBytes = u32(riff, 4);
    std::int64_t at = start + riffHeaderBytes;
    for (;;) {
        const auto header = reader.header(at, chunkHeaderBytes);
        if (header.empty()) {
            return std::nullopt;
        }
        const std::string name(header.begin(), header.begin() + 4);
        const std::uint32_t size = u32(header, 4);
        at += chunkHeaderBytes;
        if (name == "data") {
            if (!state.format) {
                return std::nullopt;
            }
            return waveTiming(reader, *state.format, dataAt(reader, state, start, at, size));
        }
        noteChunk(reader, name, at, size, state);
        at += size;
        const bool isPadded = size % 2 == 1;
        // Some writers leave out the byte that makes a chunk's size even.
        at += isPadded && !(isChunkAt(reader, at) && !isChunkAt(reader, at + 1)) ? 1 : 0;
    }
}

std::optional<Timing> wave64Duration(GuardedReader& reader, std::int64_t start) {
    constexpr std::int64_t fileHeaderBytes = 40; // "riff" and 12 bytes, size, "wave" and 12 bytes
    constexpr std::int64_t header64Bytes = 24;   // name (16), size with this header (8)
    std::optional<WaveFormat> format;
    std::optional<std::int64_t> statedFrames;
    std::int64_t at = start + fileHeaderBytes;
    for (;;) {
        const auto header = reader.header(at, header64Bytes);
        if (header.empty()) {
            return std::nullopt;
        }
        const std::string name(header.begin(), header.begin() + 4);
        const std::uint64_t stated = le64(header, 16);
        const std::int64_t rest = reader.size() - at - header64Bytes;
        const bool isKnown =
            stated >= header64Bytes && stated - header64Bytes <= static_cast<std::uint64_t>(rest);
        const std::int64_t size = isKnown ? static_cast<std::int64_t>(stated) - header64Bytes : rest;
        at += header64Bytes;
        if (name == "data") {
            const auto statedBytes = credibleBytes(stated);
            const WaveData data{at, at + size,
                                statedBytes ? std::optional(*statedBytes - header64Bytes) : std::nullopt,
                                statedFrames};
            return format ? waveTiming(reader, *format, data) : std::nullopt;
        }
        if (name == "fmt ") {
            format = parseWaveFormat(chunkStart(reader, at, size, formatBytes), false);
        } else if (const auto fact = chunkStart(reader, at, size, 8); name == "fact" && fact.size() == 8) {
            statedFrames = static_cast<std::int64_t>(le64(fact, 0)); // a negative one fits nothing
        }
        if (!isKnown) {
            return std::nullopt;
        }
        at += (size + 7) / 8 * 8;
    }
}

} // namespace velmora
