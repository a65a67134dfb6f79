#pragma once

// The statement that encoders of MPEG layer 3 put into the first frame, in place of sound: how many frames
// and bytes follow, and how many samples at both ends are the encoder's own. "Xing" (or "Info", for a
// constant bit rate) stands after the frame's side information, LAME's additions after that; "VBRI",
// Fraunhofer's, stands at a fixed place.

#include <cstdint>
#include <optional>
#include <span>

namespace velmora {

struct XingHeader {
    std::optional<std::int64_t> frames; ///< not counting this one, as most encoders mean it
    std::optional<std::int64_t> bytes;  ///< from the start of this frame to the end of the audio
    std::int64_t startTrim = 0;         ///< samples that a player leaves out at the start
    std::int64_t endTrim = 0;           ///< and at the end
};

/// What the frame that `frame` begins with (a whole layer 3 frame, or as much of it as there is) states.
/// Absent if it is sound.
std::optional<XingHeader> parseXing(std::span<const std::uint8_t> frame);

} // namespace velmora
