#pragma once

// The playing time of a container that libavformat reads: the length it states of its sound, or, where it
// states none, the packets one after the other; where it states one for everything in it, pictures and
// subtitles too, the last packets of the sound. A length guessed from a bit rate is never given. Part of the
// module that holds libavformat; the rest of the program calls LibavDuration.h.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>
#include <string>

namespace velmora {

/// Times what stands at byte `start`, opened with `demuxer`. Zero if it opens but holds no audio; absent when
/// nothing can be learnt within the reader's bounds.
std::optional<Timing> containerDuration(GuardedReader& reader, std::int64_t start,
                                        const std::string& demuxer);

/// The same, but what the file states is not believed: all its packets are read.
std::optional<Timing> walkedContainerDuration(GuardedReader& reader, std::int64_t start,
                                              const std::string& demuxer);

} // namespace velmora
