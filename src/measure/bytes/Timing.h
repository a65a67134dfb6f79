#pragma once

// What timing a file found, and on what grounds: the value that every reader returns. The total needs only
// the seconds; the rest says how they were found, for those who ask (`./dev explain`).

#include <cstdint>
#include <optional>

namespace velmora {

/// What a length rests on.
enum class Basis : std::uint8_t {
    stated,  ///< a header, an index or a table states it, and nothing speaks against it
    counted, ///< frames, packets or blocks were counted, or positions in the audio were read
    sized,   ///< the bytes of audio divided by the bytes of a second: audio that is not compressed
};

/// Why what a header states was not taken.
enum class Doubt : std::uint8_t {
    none,       ///< it was taken, or nothing was stated
    unfinished, ///< the writer never came back to fill it in
    beyondEnd,  ///< the file ends before what is stated does
    disagrees,  ///< the audio that is there says otherwise
};

/// Which part of the program found a length.
enum class Way : std::uint8_t {
    headerReader, ///< a reader of our own, chosen by the file's extension
    ownReader,    ///< a reader of our own, chosen by the file's first bytes
    libavformat,  ///< in process
    ffprobe,      ///< the program
};

/// One answer of a reader. `seconds` is finite and at least 0; 0 means that nothing in the file plays.
struct Timing {
    double seconds = 0;
    Basis basis = Basis::stated;
    std::optional<double> stated =
        {};                    ///< seconds that the header states, taken or not; absent: it states none
    Doubt doubt = Doubt::none; ///< why `stated` differs from `seconds`
    std::int64_t frames = 0;   ///< frames, packets or blocks counted; 0 where none were

    Timing() = default;

    Timing(double length) // NOLINT(google-explicit-constructor): until every reader says its basis
        : seconds(length) {}

    Way way = Way::ownReader;

    bool operator==(const Timing&) const = default;
};

} // namespace velmora
