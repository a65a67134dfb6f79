#pragma once

// What the first frame of a bare stream states of the others, held against the size of the stream.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"
#include "measure/frames/FrameHeader.h"
#include "measure/frames/FrameHopper.h"
#include "measure/frames/XingHeader.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// A first frame that states others instead of holding sound.
struct FrameStatement {
    AudioFrame frame;
    Sampling sampling;
    XingHeader header;

    double secondsOf(std::int64_t samples) const { return static_cast<double>(samples) / frame.rate; }

    /// Absent where nothing that could play is stated.
    std::optional<double> seconds() const;

    /// Whether the stream, of `size` bytes, bears it out.
    bool isBelieved(std::int64_t size) const;
};

/// What the frame at `start` states; absent if it is sound or no frame.
std::optional<FrameStatement> frameStatementAt(GuardedReader& reader, std::int64_t start, std::int64_t end);

/// The time of the frames in `sum`, of a stream of `size` bytes, whose `statement` cannot be believed.
Timing countedTiming(const FrameSum& sum, const FrameStatement& statement, std::int64_t size);

} // namespace velmora
