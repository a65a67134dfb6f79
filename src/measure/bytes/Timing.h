#pragma once

// What timing a file found, and on what grounds: the value that every reader returns. The total needs only
// the seconds; the rest says how they were found and of what sound, for those who ask.

#include "records/FormatName.h"

#include <cstdint>
#include <limits>
#include <optional>

namespace velmora {

/// What a length rests on.
enum class Basis : std::uint8_t {
    stated,  ///< a header, an index or a table states it, and nothing speaks against it
    counted, ///< frames, packets or blocks were counted, or their numbers and time stamps were read
    sized,   ///< the bytes of audio divided by the bytes of a second, which are the same all along
};

/// Why what a header states was not taken.
enum class Doubt : std::uint8_t {
    none,       ///< it was taken, or the format has no place for it
    unfinished, ///< its place is empty, holds a placeholder or lacks a part
    beyondEnd,  ///< the file ends before what is stated does
    disagrees,  ///< the audio that is there says otherwise
};

/// Who found a length in process.
enum class Way : std::uint8_t {
    headerReader, ///< a reader of our own, chosen by the file's extension
    ownReader,    ///< a reader of our own, chosen by the file's first bytes
    libavformat,
};

/// What the sound is, as far as its reader met it on the way to the length.
struct Sampling {
    std::uint32_t rate = 0;     ///< samples of a channel a second; 0: not known
    std::uint16_t channels = 0; ///< 0: not known
    FormatName coding = {};     ///< of bare frames, which have no other format

    bool operator==(const Sampling&) const = default;
};

/// `rate`, rounded to whole hertz, and `channels`; what no sound can have is not known.
constexpr Sampling samplingOf(double rate, std::int64_t channels, FormatName coding = {}) {
    constexpr std::uint32_t maxRate = 1'000'000'000;
    constexpr std::int64_t maxChannels = std::numeric_limits<std::uint16_t>::max();
    const bool isRate = rate >= 1 && rate <= maxRate;
    const bool isCount = channels > 0 && channels <= maxChannels;
    return {isRate ? static_cast<std::uint32_t>(rate + 0.5) : 0,
            isCount ? static_cast<std::uint16_t>(channels) : std::uint16_t{0}, coding};
}

/// One answer of a reader.
struct Timing {
    /// Finite and at least 0; 0 means that nothing in the file plays.
    double seconds = 0;

    Basis basis = Basis::stated;

    /// Seconds that the header states, taken or not; absent where it states none. Not bounded by the file.
    std::optional<double> stated = {};

    Doubt doubt = Doubt::none;

    /// Frames, packets or blocks that were counted one by one; 0 where none were.
    std::int64_t frames = 0;

    Way way = Way::ownReader;

    Sampling sampling = {};

    bool operator==(const Timing&) const = default;
};

/// `seconds` that a header states and that are taken as they are.
constexpr Timing statedTiming(double seconds) {
    return {.seconds = seconds, .stated = seconds};
}

/// The shorter of the seconds that a header states and of what was found in the file; what was found where
/// the header states none.
constexpr Timing withinFile(std::optional<double> stated, Timing found) {
    found.stated = stated;
    if (!stated) {
        found.doubt = Doubt::unfinished;
    } else if (*stated <= found.seconds) {
        found.seconds = *stated;
        found.basis = Basis::stated;
    } else {
        found.doubt = Doubt::beyondEnd;
    }
    return found;
}

/// What was `found` in the file, whatever a header states.
constexpr Timing foundTiming(Timing found, std::optional<double> stated) {
    found.stated = stated;
    found.doubt = !stated                   ? Doubt::unfinished
                  : *stated > found.seconds ? Doubt::beyondEnd
                  : *stated < found.seconds ? Doubt::disagrees
                                            : Doubt::none;
    return found;
}

/// The `seconds` that the bytes of audio in the file make, whatever a header states.
constexpr Timing sizedTiming(double seconds, std::optional<double> stated) {
    return foundTiming({.seconds = seconds, .basis = Basis::sized}, stated);
}

/// `timing`, if there is one, of such sound.
constexpr std::optional<Timing> sampled(std::optional<Timing> timing, const Sampling& sampling) {
    if (timing) {
        timing->sampling = sampling;
    }
    return timing;
}

} // namespace velmora
