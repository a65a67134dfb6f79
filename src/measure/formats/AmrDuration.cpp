#include "measure/formats/AmrDuration.h"

#include "measure/bytes/Magic.h"
#include "measure/bytes/SlidingWindow.h"

#include <array>
#include <string_view>

namespace velmora {

namespace {

// The magic tells which of the two codecs it is and whether there are several channels. Then the frames are
// counted one by one: the type in a frame's first byte tells its size.
//
// File (RFC 4867, section 5): magic; for several channels, whose frames take turns, four bytes with the
// number of channels in the lowest four bits; then the frames. First byte of a frame (section 5.3): 1 bit
// padding, 4 bits frame type, 1 bit quality, 2 bits padding.

constexpr double frameSeconds = 0.02;

constexpr std::int64_t channelDescriptionBytes = 4;
constexpr std::uint8_t channelMask = 0x0F; // of the last of them
constexpr int typeShift = 3;
constexpr std::uint8_t typeMask = 0x0F;

/// Bytes of a frame, its first byte included, by frame type; 0 for reserved types (3GPP TS 26.101 table 3,
/// 26.201 table 3, each rounded up to bytes).
using FrameSizes = std::array<std::uint8_t, 16>;

struct Kind {
    std::string_view magic;
    FrameSizes frameBytes;
    bool hasChannelCount;
    int rate; ///< samples a second
};

constexpr auto kinds = std::to_array<Kind>({
    {"#!AMR\n", {13, 14, 16, 18, 20, 21, 27, 32, 6, 7, 6, 6, 0, 0, 1, 1}, false, 8'000},
    {"#!AMR-WB\n", {18, 24, 33, 37, 41, 47, 51, 59, 61, 6, 0, 0, 0, 0, 1, 1}, false, 16'000},
    {"#!AMR_MC1.0\n", {13, 14, 16, 18, 20, 21, 27, 32, 6, 7, 6, 6, 0, 0, 1, 1}, true, 8'000},
    {"#!AMR-WB_MC1.0\n", {18, 24, 33, 37, 41, 47, 51, 59, 61, 6, 0, 0, 0, 0, 1, 1}, true, 16'000},
});

std::int64_t countFrames(GuardedReader& reader, std::int64_t at, const FrameSizes& frameBytes) {
    SlidingWindow window(reader, reader.size());
    std::int64_t frames = 0;
    for (;;) {
        const auto bytes = window.from(at, 1);
        std::size_t used = 0;
        while (used < bytes.size()) {
            // A first byte of zero would be the smallest frame, marked as damaged: what follows the audio is
            // empty.
            const std::size_t length = bytes[used] == 0 ? 0 : frameBytes[bytes[used] >> typeShift & typeMask];
            const bool isCutOff = at + static_cast<std::int64_t>(used + length) > window.end();
            if (length == 0 || isCutOff) {
                return frames;
            }
            used += length;
            ++frames;
        }
        if (used == 0) {
            return frames;
        }
        at += static_cast<std::int64_t>(used);
    }
}

} // namespace

std::optional<Timing> amrDuration(GuardedReader& reader, std::int64_t start) {
    for (const Kind& kind : kinds) {
        if (!matches(reader.header(start, kind.magic.size()), kind.magic)) {
            continue;
        }
        auto at = start + static_cast<std::int64_t>(kind.magic.size());
        int channels = 1;
        if (kind.hasChannelCount) {
            const auto description = reader.header(at, channelDescriptionBytes);
            channels = description.empty() ? 0 : description.back() & channelMask;
            at += channelDescriptionBytes;
        }
        const std::int64_t frames = channels == 0 ? 0 : countFrames(reader, at, kind.frameBytes) / channels;
        return Timing{.seconds = static_cast<double>(frames) * frameSeconds,
                      .basis = Basis::counted,
                      .frames = frames,
                      .sampling = samplingOf(kind.rate, channels)};
    }
    return std::nullopt;
}

} // namespace velmora
