#pragma once

// The header of a FLAC frame (RFC 9639 section 9.1): it carries the number of its first sample and a
// checksum, so that the last frame of a file can be recognised and tells how long the file plays.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace velmora {

/// What the stream's first metadata block, STREAMINFO, states (RFC 9639 section 8.2).
struct FlacStreamInfo {
    std::int32_t blockSamples = 0; ///< in every frame but the last, of a stream with a fixed block size
    std::int32_t frameBytes = 0;   ///< of the largest frame; 0 if not stated
    std::int32_t rate = 0;         ///< 0 if not stated
    std::int64_t samples = 0;      ///< 0 if not stated
    std::int32_t channels = 0;     ///< positive
};

struct FlacFrame {
    std::int64_t firstSample = 0; ///< where blocks have a fixed size, by that of the stream
    std::int64_t number = 0;      ///< of its first sample; where blocks have a fixed size, of the frame
    std::int64_t samples = 0;
    std::int32_t rate = 0;     ///< positive; of the stream if the frame states none
    std::size_t at = 0;        ///< index of its header in the bytes searched
    bool hasFixedSize = false; ///< as all frames of the stream but the last, which may be smaller
};

/// Absent if `block`, the content of STREAMINFO, is too short.
std::optional<FlacStreamInfo> parseStreamInfo(std::span<const std::uint8_t> block);

inline constexpr std::size_t maxFlacHeaderBytes = 16;

/// The frame whose header `bytes` begin with; absent if they do not, or if neither it nor `stream` states a
/// rate.
std::optional<FlacFrame> parseFlacFrame(std::span<const std::uint8_t> bytes, const FlacStreamInfo& stream);

/// The last frame whose header begins in `bytes` before index `end`, of whatever rate.
std::optional<FlacFrame> flacFrameBefore(std::span<const std::uint8_t> bytes, std::size_t end,
                                         const FlacStreamInfo& stream);

/// Whether `next` goes on where `frame` ends, by their numbers and rates. Chance hardly makes two such
/// headers.
bool follows(const FlacFrame& next, const FlacFrame& frame);

/// The last frame that begins in `bytes`; whether all of it is there is not asked. One of another rate than
/// that of `stream` counts if it follows another.
std::optional<FlacFrame> lastFlacFrame(std::span<const std::uint8_t> bytes, const FlacStreamInfo& stream);

/// True if `frame` is one whole frame: it ends with the checksum of what is before.
bool isWholeFlacFrame(std::span<const std::uint8_t> frame);

} // namespace velmora
