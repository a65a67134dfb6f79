#pragma once

// What timing a file found, and on what grounds: the value that every reader returns. The total needs only
// the seconds; the rest says how they were found, for those who ask (`./dev explain`).

#include <cstdint>
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

} // namespace velmora
