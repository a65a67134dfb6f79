#pragma once

// Counts what is in one packet by decoding it: the last resort for the packet of a cut-off file that holds
// dozens of frames of which nothing tells where they begin.

#include <cstdint>
#include <span>

namespace velmora {

/// Samples of one channel that libavcodec's decoder called `decoder` makes of `packet`, which may lack its
/// end; what the decoder makes of the frame that is cut off counts as well. `description` is what the
/// container keeps of the stream for the decoder. 0 if it makes nothing of it.
std::int64_t decodedSamples(const char* decoder, std::span<const std::uint8_t> description,
                            std::span<const std::uint8_t> packet);

} // namespace velmora
