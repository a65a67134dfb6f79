#include "measure/check/Examination.h"

#include "measure/bytes/SlidingWindow.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace velmora {

namespace {

constexpr GuardedReader::Bounds noBounds{.budget = std::numeric_limits<std::int64_t>::max(),
                                         .deadline = GuardedReader::Clock::time_point::max()};

} // namespace

Examination::Examination(ByteSource source, std::stop_token stop)
    : m_source(std::move(source))
    , m_stop(std::move(stop))
    , m_whole(m_source, m_stop) {
    m_whole.setBounds(noBounds);
}

void Examination::note(FindingKind kind, const Lengths& lengths) {
    if (std::ranges::find(m_findings, kind, &Finding::kind) == m_findings.end()) {
        m_findings.push_back({kind, lengths.stated, lengths.found});
    }
}

void Examination::compare(const Lengths& lengths, double tolerance) {
    if (!lengths.stated || !lengths.found) {
        return;
    }
    if (*lengths.stated > *lengths.found + tolerance) {
        note(FindingKind::truncated, lengths);
    } else if (*lengths.found > *lengths.stated + tolerance) {
        note(FindingKind::longer, lengths);
    }
}

void Examination::noteWalk(const WalkResult& result) {
    compare(result.lengths, exactly);
    if (result.endsInPart && !result.lengths.stated) {
        note(FindingKind::truncated, result.lengths);
    }
    if (result.begin > 0) {
        note(FindingKind::offset, {.stated = {}, .found = result.begin});
    }
    if (result.isDamaged) {
        note(FindingKind::damaged, {.stated = result.lengths.stated, .found = result.wholeSeconds});
    }
    compareEnds(result.end, result.tagsAt, result.lengths);
}

void Examination::compareEnds(std::int64_t audioEnd, std::int64_t tagsAt, const Lengths& lengths) {
    constexpr std::int64_t harmlessBytes = 64 << 10;
    if (tagsAt - audioEnd > harmlessBytes) {
        note(FindingKind::trailing, lengths);
    }
}

bool Examination::hasZeros(std::int64_t start, std::int64_t end) {
    constexpr std::int64_t minRun = 4 << 10;
    SlidingWindow window(m_whole, end);
    std::int64_t run = 0;
    bool isFound = false;
    while (start < window.end()) {
        const auto bytes = window.from(start, 1);
        for (const std::uint8_t byte : bytes) {
            run = byte == 0 ? run + 1 : 0;
            isFound |= run >= minRun;
        }
        if (bytes.empty()) {
            break;
        }
        start += std::ssize(bytes);
    }
    return isFound;
}

void Examination::readThrough(std::int64_t start) {
    constexpr std::size_t stepBytes = 1 << 20;
    std::vector<std::uint8_t> buffer(stepBytes);
    while (const std::size_t got = m_whole.audio(start, buffer)) {
        start += static_cast<std::int64_t>(got);
    }
}

} // namespace velmora
