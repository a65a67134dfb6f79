#include "measure/bytes/GuardedReader.h"

#include <algorithm>
#include <utility>

namespace velmora {

GuardedReader::GuardedReader(ByteSource source, std::stop_token stop)
    : m_source(std::move(source))
    , m_stop(std::move(stop)) {}

std::span<const std::uint8_t> GuardedReader::header(std::int64_t offset, std::size_t count) {
    const bool reachesBeyondEnd = offset > size() - static_cast<std::int64_t>(count);
    if (offset < size()) { // else there is nothing that could be cut off
        m_isCutOff = reachesBeyondEnd && offset >= 0;
    }
    if (offset < 0 || count > windowBytes || reachesBeyondEnd) {
        return {};
    }
    if (!m_windows[m_latest].holds(offset, count)) {
        m_latest = 1 - m_latest;
    }
    Window& window = m_windows[m_latest];
    if (!window.holds(offset, count)) {
        const auto left = static_cast<std::size_t>(std::min<std::int64_t>(windowBytes, size() - offset));
        window.size = search(offset, std::span(window.bytes).first(left));
        window.start = offset;
        if (window.size < count) {
            return {};
        }
    }
    return std::span(window.bytes).subspan(static_cast<std::size_t>(offset - window.start), count);
}

std::span<const std::uint8_t> GuardedReader::headerUpTo(std::int64_t offset, std::size_t count,
                                                        std::int64_t end) {
    const std::int64_t limit = std::min(end, size());
    if (offset < 0 || offset >= limit) {
        return {};
    }
    const auto rest = static_cast<std::uint64_t>(limit - offset);
    return header(offset, static_cast<std::size_t>(std::min<std::uint64_t>(count, rest)));
}

std::size_t GuardedReader::search(std::int64_t offset, std::span<std::uint8_t> buffer) {
    if (isOver()) {
        return 0;
    }
    const std::size_t got = m_source.readAt(offset, buffer).value_or(0);
    m_bounds.budget -= static_cast<std::int64_t>(got);
    return got;
}

std::size_t GuardedReader::audio(std::int64_t offset, std::span<std::uint8_t> buffer) {
    return m_stop.stop_requested() ? 0 : m_source.readAt(offset, buffer).value_or(0);
}

bool GuardedReader::spend(std::int64_t bytes) {
    m_bounds.budget -= bytes;
    return !isOver();
}

bool GuardedReader::isOver() const {
    return m_bounds.budget < 0 || m_stop.stop_requested() || Clock::now() > m_bounds.deadline;
}

void GuardedReader::renew() {
    m_bounds = {.deadline = Clock::now() + searchTime};
}

} // namespace velmora
