#pragma once

// What the program asks of libavformat and libavcodec. Both read formats by the hundred, most of them seldom
// used, and a file may be made to misuse them: so they run in a process of their own, velmora-libav, which
// reads one open file and can do nothing else. A file that crashes it, hangs it or takes too much memory has
// no length; the next file gets a new process. It is started at the first call, since most scans need none.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace velmora {

/// The demuxer that libavformat would choose.
struct ProbedDemuxer {
    std::string name;
    bool isMedia = false; ///< it reads one self-contained file with audio in it, and may be used
};

/// Each operation may be called on any thread, many at once, and returns early when its reader's search is
/// over.
class Libav {
public:
    Libav() = default;
    Libav(const Libav&) = delete;
    Libav& operator=(const Libav&) = delete;
    virtual ~Libav() = default;

    /// Times what stands at byte `start`, opened with `demuxer`: the length that the container states of its
    /// sound, or, where it states none, its packets one after the other; where it states one for everything
    /// in it, pictures and subtitles too, the last packets of the sound. A length guessed from a bit rate is
    /// never given. With a `doubt` other than `none` what is stated is not believed: all packets are read.
    /// Zero if the file opens but holds no audio; absent when nothing can be learnt within the reader's
    /// bounds.
    virtual std::optional<Timing> duration(GuardedReader& reader, std::int64_t start,
                                           const std::string& demuxer, Doubt doubt) const = 0;

    /// The demuxer that libavformat would choose among all it has, for the bytes at `start` of a file called
    /// `name`; absent if none fits.
    virtual std::optional<ProbedDemuxer> probe(GuardedReader& reader, std::int64_t start,
                                               const std::filesystem::path& name) const = 0;

    /// Samples of one channel that libavcodec's decoder called `decoder` makes of `packet`, which may lack
    /// its end; what the decoder makes of the frame that is cut off counts as well. `description` is what the
    /// container keeps of the stream for the decoder. 0 if it makes nothing of it. This is the last resort
    /// for the packet of a cut-off file that holds dozens of frames of which nothing tells where they begin.
    virtual std::int64_t decodedSamples(const char* decoder, std::span<const std::uint8_t> description,
                                        std::span<const std::uint8_t> packet) const = 0;
};

/// The one implementation; where velmora-libav is missing, it learns nothing from any file.
const Libav& libav();

/// The libraries that velmora-libav works with, a line each with the version; empty where it is missing.
std::string libavReport();

} // namespace velmora
