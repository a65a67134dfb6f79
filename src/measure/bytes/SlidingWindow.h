#pragma once

// Audio read from front to back in large pieces: one buffer, no copy a frame.

#include "measure/bytes/GuardedReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace velmora {

class SlidingWindow {
public:
    static constexpr std::size_t windowBytes = 256 << 10; ///< fits a core's second level of cache

    /// Over the bytes of `reader` before `end`. `reader` must outlive the window.
    SlidingWindow(GuardedReader& reader, std::int64_t end)
        : m_reader(reader)
        , m_end(std::min(end, reader.size())) {}

    /// The end given, or the file's where a read found that it comes first.
    std::int64_t end() const { return m_end; }

    /// All that is at hand from `offset` on: at least `wanted` bytes (up to `windowBytes`) unless the end
    /// comes first or the measurement was stopped. Valid until the next call.
    std::span<const std::uint8_t> from(std::int64_t offset, std::size_t wanted) {
        if (offset < m_start || offset + static_cast<std::int64_t>(wanted) > m_filledTo) {
            fill(offset);
        }
        if (offset < m_start || offset >= m_filledTo) {
            return {};
        }
        return std::span(m_bytes).subspan(static_cast<std::size_t>(offset - m_start),
                                          static_cast<std::size_t>(m_filledTo - offset));
    }

private:
    void fill(std::int64_t offset) {
        const bool hasAllThereIs = m_filledTo == m_end && offset >= m_start;
        if (hasAllThereIs || offset < 0 || offset >= m_end) {
            return;
        }
        m_bytes.resize(static_cast<std::size_t>(std::min<std::int64_t>(windowBytes, m_end - offset)));
        m_start = offset;
        const std::size_t got = m_reader.audio(offset, m_bytes);
        m_filledTo = offset + static_cast<std::int64_t>(got);
        if (got < m_bytes.size()) {
            m_end = m_filledTo; // the file is shorter than it was: asking again would read the same again
        }
    }

    GuardedReader& m_reader;
    std::int64_t m_end;
    std::int64_t m_start = 0;
    std::int64_t m_filledTo = 0;
    std::vector<std::uint8_t> m_bytes;
};

} // namespace velmora
