#pragma once

// Untrusted bytes, read within bounds. Whoever searches a file for its length reads through this: what is
// read in search of audio is paid from a budget, and both the budget and a deadline end the search. So a file
// made of nothing but headers costs no more than a fraction of a second. Audio itself, once found, is read
// without a budget: a long recording takes as long as it takes.

#include "measure/bytes/ByteSource.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stop_token>

namespace velmora {

/// One measurement's access to one file. Used by one thread at a time.
class GuardedReader {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t windowBytes = 4096;       ///< the most that `header` gives at once
    static constexpr std::int64_t searchBytes = 8LL << 20; ///< the budget
    static constexpr std::chrono::seconds searchTime{10};  ///< the deadline, from construction

    /// How long the search may go on. Both are good in every process of this system, so that a search may go
    /// on in another.
    struct Bounds {
        std::int64_t budget = searchBytes; ///< in bytes; below 0 once more was read than it held
        Clock::time_point deadline;
    };

    GuardedReader(ByteSource source, std::stop_token stop);

    std::int64_t size() const { return m_source.size; }

    const ByteSource& source() const { return m_source; }

    const std::stop_token& stop() const { return m_stop; }

    const Bounds& bounds() const { return m_bounds; }

    void setBounds(const Bounds& bounds) { m_bounds = bounds; }

    /// The `count` (at most `windowBytes`) bytes at `offset`, or none if the file has not all of them, cannot
    /// be read, or the search is over. Valid until the next call. Neighbouring headers cost one read.
    std::span<const std::uint8_t> header(std::int64_t offset, std::size_t count);

    /// Whether the header that was asked for last begins in the file and reaches beyond its end. Told of by
    /// whoever asks for no more than there is, too.
    bool isCutOff() const { return m_isCutOff; }

    void noteCutOff() { m_isCutOff = true; }

    /// The first of them that stand before `end`, where the file has fewer than `count` or the structure that
    /// is read ends earlier.
    std::span<const std::uint8_t> headerUpTo(std::int64_t offset, std::size_t count, std::int64_t end);

    std::span<const std::uint8_t> headerUpTo(std::int64_t offset, std::size_t count) {
        return headerUpTo(offset, count, size());
    }

    /// Reads into `buffer` as RegularFile::readAt does, paid from the budget; 0 when the search is over.
    std::size_t search(std::int64_t offset, std::span<std::uint8_t> buffer);

    /// The same for audio that was found: costs nothing, ends only when stopped.
    std::size_t audio(std::int64_t offset, std::span<std::uint8_t> buffer);

    /// Takes `bytes` from the budget; false when the search is over.
    bool spend(std::int64_t bytes);

    /// True once the budget is spent, the deadline is past or the measurement was stopped.
    bool isOver() const;

    /// Bytes that may still be read in search of audio, at least 0.
    std::int64_t budgetLeft() const { return std::max<std::int64_t>(m_bounds.budget, 0); }

    /// A piece of media was found: budget and deadline begin anew for the search of the next.
    void renew();

private:
    ByteSource m_source;
    std::stop_token m_stop;
    Bounds m_bounds{.deadline = Clock::now() + searchTime};

    /// What was read last. There are two, because readers go to and fro between two places.
    struct Window {
        std::array<std::uint8_t, windowBytes> bytes; // the first `size` of them are filled
        std::int64_t start = 0;
        std::size_t size = 0;

        bool holds(std::int64_t offset, std::size_t count) const {
            return offset >= start &&
                   offset - start <= static_cast<std::int64_t>(size) - static_cast<std::int64_t>(count);
        }
    };

    bool m_isCutOff = false;
    std::array<Window, 2> m_windows;
    std::size_t m_latest = 0;
};

} // namespace velmora
