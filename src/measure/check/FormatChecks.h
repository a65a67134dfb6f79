#pragma once

// The checks of single formats. Each takes note of what is wrong with the content that begins at `start` of
// the file, after any ID3v2 tag, and returns up to where it has read all bytes.

#include "measure/check/Examination.h"
#include "measure/formats/FormatTable.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace velmora {

using FormatCheck = std::int64_t (*)(Examination& file, std::int64_t start);

/// Frames by their numbers and checksums.
std::int64_t checkFlac(Examination& file, std::int64_t start);

/// Pages by their numbers, clocks and checksums.
std::int64_t checkOgg(Examination& file, std::int64_t start);

/// Blocks by their numbers and checksums.
std::int64_t checkWavPack(Examination& file, std::int64_t start);

/// Packets by their count and the checksum of the first.
std::int64_t checkMusepack(Examination& file, std::int64_t start);

/// The statement of the header against the tables and the size of the file, and the clock of fragments.
std::int64_t checkMp4(Examination& file, std::int64_t start);

/// The packets of the data object, and whether all of it is there.
std::int64_t checkAsf(Examination& file, std::int64_t start);

/// Elements by their checksums, the statement of the header against the size of the file, the clock.
std::int64_t checkMatroska(Examination& file, std::int64_t start);

/// PCM in chunks: the statement of the header, and what stands after the last chunk.
std::int64_t checkWav(Examination& file, std::int64_t start);
std::int64_t checkAiff(Examination& file, std::int64_t start);

/// Bare frames of MPEG audio or ADTS by what stands between them, checksums, and the lengths that the first
/// frame and the tag state. Returns what they are called in the table of extensions (ForeignFormat.h); absent
/// if there are none. Reads all bytes but the tags.
std::optional<std::string_view> checkFrames(Examination& file, std::int64_t start);

/// Any other format by what its reader says of the statement in its header.
std::int64_t checkStatement(Examination& file, std::int64_t start, FormatReader reader);

/// Takes note of `longer` for a second file that begins at `at`. `lengths` are those of the first.
void noteSecond(Examination& file, std::int64_t at, const Lengths& lengths);

/// The same if a format of the table begins at `at`, where the content ends; else as `compareEnds`.
void checkRest(Examination& file, std::int64_t at, std::int64_t tagsAt, const Lengths& lengths);

} // namespace velmora
