#pragma once

// What the program asks of libavformat and libavcodec. Both bring more than a hundred libraries along, whose
// loading takes longer than measuring a thousand files, and most scans need none of them. So they stand in a
// module of their own, which is loaded at the first call. The module implements this interface and the rest
// of the program calls it; values go in and out, and the module reads the file through `GuardedReader` only.

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

/// The module's implementation, loaded at the first call; where it cannot be loaded, one that learns nothing
/// from any file.
const Libav& libav();

/// The module's file, which is found where the program's own libraries are, and the one symbol it exports: a
/// `const Libav* const`.
inline constexpr const char* libavModuleFile = "velmora-libav.so";
inline constexpr const char* libavModuleSymbol = "velmoraLibav";

} // namespace velmora
