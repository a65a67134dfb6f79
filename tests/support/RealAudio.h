#pragma once

// Audio files of every format a real encoder exists for, with a length known by construction: the source is
// written sample by sample, so its length is exact, and what an encoder adds to it is that format's business.

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace velmora::test {

/// What the source holds. The odd default is no whole number of frames in any codec.
struct AudioShape {
    std::int64_t frames = 133'423; ///< samples of one channel
    int rate = 44'100;             ///< frames a second
    int channels = 2;

    double seconds() const { return static_cast<double>(frames) / rate; }
};

/// The shortest source that every encoder takes and every report shows as one second.
inline constexpr AudioShape oneSecond{.frames = 8'000, .rate = 8'000, .channels = 1};

/// Writes 16-bit PCM as WAV to `path`, making its parent folders; returns `path`. The sound is the same each
/// time: a tone that swells, noise and silence take turns, so that encoders of variable rate vary.
std::filesystem::path writeWav(const std::filesystem::path& path, const AudioShape& shape = {});

/// Encodes such a source to `path` with the shell command `command`, which finds the source in $IN and `path`
/// in $OUT. Returns `path`; a command that fails or leaves no file is a test failure.
std::filesystem::path encodeAudio(const std::filesystem::path& path, std::string_view command,
                                  const AudioShape& shape = {});

/// The same with the usual encoder for `path`'s extension:
///   wav wave bwf rf64 w64 aif aiff aifc au snd caf voc sd2   PCM
///   flac alac wv tta                                         lossless
///   mp3 mp2 aac adts m4a m4b m4r mp4 mka ogg oga opus ogx spx wma mpc ra 3ga amr
/// amr is encoded at 8 kHz mono, ra as AC-3 in RealMedia. For an extension without an encoder (ape, dsf, dff,
/// aa, aax) the test fails.
std::filesystem::path encodeAudio(const std::filesystem::path& path, const AudioShape& shape = {});

} // namespace velmora::test
