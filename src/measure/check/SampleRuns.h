#pragma once

// Adds up blocks of sound that carry the number of their first sample. Where the numbers begin anew, a
// stream was joined to another.

#include <cstdint>
#include <optional>

namespace velmora {

class SampleRuns {
public:
    void take(std::int64_t firstSample, std::int64_t samples) {
        if (!m_first) {
            m_first = m_begin = firstSample;
        } else if (firstSample < m_end) {
            m_before += m_end - m_begin;
            m_begin = firstSample;
        }
        m_end = firstSample + samples;
    }

    /// The last block ends where it begins: not all of it is there.
    void dropLast(std::int64_t firstSample) { m_end = firstSample; }

    /// The number of the first sample of all; absent before the first block.
    std::optional<std::int64_t> first() const { return m_first; }

    /// After the last block.
    std::int64_t next() const { return m_end; }

    /// From the first sample of each stream to its last, gaps included.
    std::int64_t samples() const { return m_before + m_end - m_begin; }

private:
    std::optional<std::int64_t> m_first;
    std::int64_t m_before = 0; // in the streams before the last
    std::int64_t m_begin = 0;
    std::int64_t m_end = 0;
};

} // namespace velmora
