#pragma once

// The playing time of a container that libavformat reads: the length it states, or, where it states none, the
// packets one after the other. A length guessed from a bit rate is never given. The first call loads
// libavformat; where that cannot be loaded, nothing can be learnt from it. Called on any thread.

#include "measure/GuardedReader.h"
#include "measure/LibavModule.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace velmora {

/// Times what stands at byte `start`, opened with `demuxer`. Zero if it opens but holds no audio; absent when
/// nothing can be learnt within the reader's bounds.
std::optional<double> libavDuration(GuardedReader& reader, std::int64_t start, const std::string& demuxer);

/// The same, but what the file states is not believed: all its packets are read.
std::optional<double> libavWalkedDuration(GuardedReader& reader, std::int64_t start,
                                          const std::string& demuxer);

/// The demuxer that libavformat would choose among all it has, for the bytes at `start` of a file called
/// `name`; absent if none fits.
std::optional<ProbedDemuxer> probeDemuxer(GuardedReader& reader, std::int64_t start,
                                          const std::filesystem::path& name);

} // namespace velmora
