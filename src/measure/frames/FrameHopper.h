#pragma once

// Adds up self-synchronising audio frames (see FrameHeader.h) by hopping from header to header, over whatever
// stands between them: tags, zeros, remains of other files.

#include "measure/bytes/GuardedReader.h"
#include "measure/frames/FrameHeader.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace velmora {

struct FrameSum {
    double seconds = 0;
    std::int64_t frames = 0;
    std::int64_t bytes = 0;      ///< of those frames
    std::int64_t junkBytes = 0;  ///< that are neither frames nor tags
    Sampling sampling = {};      ///< of the first
    std::int64_t longestRun = 0; ///< frames of one kind, one directly after the other
};

/// True if at `start` a frame stands that another follows, or that ends exactly at `end` or at a tag.
bool isFrameAt(GuardedReader& reader, std::int64_t start, std::int64_t end);

/// Where the first frame at or after `start` stands that more frames follow than chance makes, or that is one
/// of a few that end exactly at `end` or at a tag. What is not audio is paid from the reader's budget. Absent
/// if there is none before `end`.
std::optional<std::int64_t> findFrame(GuardedReader& reader, std::int64_t start, std::int64_t end);

/// Told of a frame that stands at `at` in the file; `bytes` are all of it, valid until it returns.
using FrameVisit =
    std::function<void(std::int64_t at, const AudioFrame& frame, std::span<const std::uint8_t> bytes)>;

/// The whole frames between `start`, where one is expected, and `end`, each of which `visit`, unless empty,
/// is told of. A last frame that is cut off does not count.
FrameSum sumFrames(GuardedReader& reader, std::int64_t start, std::int64_t end, const FrameVisit& visit = {});

} // namespace velmora
