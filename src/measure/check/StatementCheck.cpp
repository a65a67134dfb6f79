#include "measure/bytes/AudioTags.h"
#include "measure/bytes/Chunks.h"
#include "measure/bytes/Magic.h"
#include "measure/check/FormatChecks.h"
#include "measure/formats/AiffDuration.h"
#include "measure/formats/WavDuration.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace velmora {

namespace {

// RIFF and FORM: name (4), size (4), kind (4), then chunks.
constexpr std::int64_t headerBytes = 12;

/// Where the chunks end.
struct ChunkEnd {
    std::int64_t at = 0;
    bool isUnfinished = false; ///< the last one has the size of a writer that does not know it
};

/// True for about the largest number of 31 or 32 bits, with a header or without.
bool isPlaceholder(std::uint64_t size) {
    constexpr std::array<std::int64_t, 4> numbers = {0x7F00'0000, 0x7FFF'FFFF, 0x8000'0000, 0xFFFF'FFFF};
    constexpr std::int64_t headers = 64 << 10;
    return std::ranges::any_of(numbers, [size](std::int64_t number) {
        return std::abs(static_cast<std::int64_t>(size) - number) <= headers;
    });
}

bool isChunkName(const std::string& name) {
    return std::ranges::all_of(name, [](char c) { return c >= ' ' && c <= '~'; });
}

ChunkEnd endOfChunks(GuardedReader& reader, SizeOrder order, std::int64_t start) {
    const ChunkLayout layout{.order = order, .alignment = 2};
    ChunkEnd end{.at = start + headerBytes};
    while (const auto chunk = chunkAt(reader, layout, end.at)) {
        if (!isChunkName(chunk->name) || formatAt(reader, end.at) != nullptr) { // junk, or another file
            break;
        }
        const bool isSound = chunk->name == "data" || chunk->name == "SSND";
        end.isUnfinished = isSound && (chunk->stated <= 8 || isPlaceholder(chunk->stated));
        end.at = end.isUnfinished ? reader.size() : chunk->next;
    }
    return end;
}

/// The statement of PCM, and what stands after the last chunk.
std::int64_t checkChunks(Examination& file, std::int64_t start, SizeOrder order, FormatReader reader) {
    GuardedReader header = file.header();
    const ChunkEnd end = endOfChunks(header, order, start);
    if (!end.isUnfinished) {
        checkStatement(file, start, reader);
        if (file.findings().empty()) {
            const auto timing = reader(header, start);
            checkRest(file, end.at, findTrailingTags(header, start),
                      timing ? Lengths{timing->stated, timing->seconds} : Lengths());
        }
    }
    return start;
}

} // namespace

std::int64_t checkWav(Examination& file, std::int64_t start) {
    GuardedReader header = file.header();
    const bool isReversed = matches(header.header(start, 4), "RIFX");
    return checkChunks(file, start, isReversed ? SizeOrder::highestByteFirst : SizeOrder::lowestByteFirst,
                       &wavDuration);
}

std::int64_t checkAiff(Examination& file, std::int64_t start) {
    return checkChunks(file, start, SizeOrder::highestByteFirst, &aiffDuration);
}

std::int64_t checkStatement(Examination& file, std::int64_t start, FormatReader reader) {
    GuardedReader header = file.header();
    const std::optional<Timing> timing = reader(header, start);
    if (timing && (timing->doubt == Doubt::beyondEnd || timing->doubt == Doubt::disagrees)) {
        file.compare({.stated = timing->stated, .found = timing->seconds}, packetTolerance);
    }
    return start;
}

void noteSecond(Examination& file, std::int64_t at, const Lengths& lengths) {
    GuardedReader header = file.header();
    const Format* const format = formatAt(header, at);
    const auto timing =
        format != nullptr && format->read != nullptr ? format->read(header, at) : std::nullopt;
    const bool isKnown = lengths.found && timing;
    file.note(FindingKind::longer,
              {.stated = lengths.stated,
               .found = isKnown ? std::optional(*lengths.found + timing->seconds) : std::nullopt});
}

void checkRest(Examination& file, std::int64_t at, std::int64_t tagsAt, const Lengths& lengths) {
    GuardedReader header = file.header();
    if (at < tagsAt && formatAt(header, at) != nullptr) {
        noteSecond(file, at, lengths);
    } else {
        file.compareEnds(at, tagsAt, lengths);
    }
}

} // namespace velmora
