#pragma once

// One file under check: how it is read, and what has been found so far.

#include "measure/bytes/GuardedReader.h"
#include "records/Finding.h"

#include <cstdint>
#include <optional>
#include <stop_token>

namespace velmora {

/// What a file says of its length and what there is of it, in seconds.
struct Lengths {
    std::optional<double> stated = {};
    std::optional<double> found = {};
};

/// How far what is stated may be from what was found, in seconds: less than two frames of any codec, which
/// encoders add or leave out. For formats that state samples it is `exactly`.
inline constexpr double paddingTolerance = 0.060;
inline constexpr double packetTolerance = 0.120; ///< where whole packets of lossless coders are stated
inline constexpr double exactly = 1e-6;

/// What a walk over all numbered frames of a file came to. Seconds, and positions in the file.
struct WalkResult {
    Lengths lengths;
    double begin = 0;        ///< of the clock
    double wholeSeconds = 0; ///< in frames that hold their checksums
    bool isDamaged = false;
    bool endsInPart = false; ///< the last frame is not whole, and nothing follows
    std::int64_t end = 0;    ///< of the last frame
    std::int64_t tagsAt = 0;
};

/// Used by one thread.
class Examination {
public:
    Examination(ByteSource source, std::stop_token stop);

    /// For what a header states: reads within the bounds of a search.
    GuardedReader header() const { return {m_source, m_stop}; }

    /// For a walk from one end of the file to the other: reads without bounds, until it is stopped.
    GuardedReader& whole() { return m_whole; }

    std::int64_t size() const { return m_source.size; }

    /// Takes note of `kind`, the first time it is met.
    void note(FindingKind kind, const Lengths& lengths = {});

    /// Takes note of `truncated` or `longer` where what is stated differs from what was found by more than
    /// `tolerance`; of neither where one of them is not known.
    void compare(const Lengths& lengths, double tolerance);

    /// Takes note of all that `result` tells, whose numbers are exact.
    void noteWalk(const WalkResult& result);

    /// Takes note of `trailing` if more than 64 KiB stand between the end of the audio and the tags after it.
    void compareEnds(std::int64_t audioEnd, std::int64_t tagsAt, const Lengths& lengths);

    /// Whether 4 KiB of zeros in a row stand between `start` and `end`.
    bool hasZeros(std::int64_t start, std::int64_t end);

    /// Reads all bytes from `start` on: of what has no checksum it is known at least that it can be read.
    void readThrough(std::int64_t start);

    const Findings& findings() const { return m_findings; }

private:
    ByteSource m_source;
    std::stop_token m_stop;
    GuardedReader m_whole;
    Findings m_findings;
};

} // namespace velmora
