#pragma once

// The playing time of a container that libavformat reads: the length it states of its sound, or, where it
// states none, the packets one after the other; where it states one for everything in it, pictures and
// subtitles too, the last packets of the sound. A length guessed from a bit rate is never given. The first
// call loads libavformat; where that cannot be loaded, nothing can be learnt from it. Called on any thread.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"
#include "measure/libav/LibavModule.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace velmora {

/// Times what stands at byte `start`, opened with `demuxer`. Zero if it opens but holds no audio; absent when
/// nothing can be learnt within the reader's bounds.
std::optional<Timing> libavDuration(GuardedReader& reader, std::int64_t start, const std::string& demuxer);

/// The same, but what the file states is not believed: all its packets are read.
std::optional<Timing> libavWalkedDuration(GuardedReader& reader, std::int64_t start,
                                          const std::string& demuxer);

/// The demuxer that libavformat would choose among all it has, for the bytes at `start` of a file called
/// `name`; absent if none fits.
std::optional<ProbedDemuxer> probeDemuxer(GuardedReader& reader, std::int64_t start,
                                          const std::filesystem::path& name);

/// Samples of one channel that libavcodec's decoder called `decoder` makes of `packet`, which may lack its
/// end; what the decoder makes of the frame that is cut off counts as well. `description` is what the
/// container keeps of the stream for the decoder. 0 if it makes nothing of it.
std::int64_t libavDecodedSamples(const char* decoder, std::span<const std::uint8_t> description,
                                 std::span<const std::uint8_t> packet);

} // namespace velmora
