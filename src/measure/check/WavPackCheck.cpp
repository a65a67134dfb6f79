#include "measure/bytes/AudioTags.h"
#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/SlidingWindow.h"
#include "measure/check/FormatChecks.h"
#include "measure/check/SampleRuns.h"
#include "measure/formats/WavPackBlock.h"

#include <algorithm>
#include <cstring>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Blocks stand one directly after the other and number their samples; those of further channels follow with
// the same number. A block that says so ends with the checksum of what is before (wavpack.com, "WavPack 4 & 5
// Binary File / Block Format", section 3.0): 2F, the size in words of 2 bytes, then 2 or 4 bytes.

constexpr std::uint32_t hasChecksum = 0x1000'0000; // of the flags
constexpr std::uint8_t checksumId = 0x2F;
constexpr std::int64_t checksumHeaderBytes = 2;
constexpr std::int64_t longChecksumBytes = 4;
constexpr std::int64_t shortChecksumBytes = 2;

class WavPackWalk {
public:
    WavPackWalk(GuardedReader& reader, std::int64_t start, std::int64_t end)
        : m_window(reader, end)
        , m_position(start)
        , m_end(start) {}

    void walk() {
        while (const auto block = next()) {
            take(*block);
            m_position += block->bytes;
            m_end = m_position;
        }
    }

    const SampleRuns& runs() const { return m_runs; }

    std::int64_t wholeSamples() const { return m_wholeSamples; }

    std::int64_t end() const { return m_end; }

    bool isDamaged() const { return m_isDamaged; }

    bool endsInPart() const { return m_endsInPart; }

private:
    /// The whole block at the position, or at the next one where there is one.
    std::optional<WavPackBlock> next() {
        while (m_position < m_window.end()) {
            const auto block = parseWavPackBlock(m_window.from(m_position, wavPackHeaderBytes));
            if (block && block->bytes <= m_window.end() - m_position) {
                m_isDamaged |= m_position != m_end;
                return block;
            }
            m_endsInPart |= block && m_position == m_end;
            ++m_position;
            if (!seekLetter()) {
                break;
            }
        }
        return std::nullopt;
    }

    bool seekLetter() {
        while (m_position < m_window.end()) {
            const Bytes bytes = m_window.from(m_position, 1);
            const void* const letter = bytes.empty() ? nullptr : std::memchr(bytes.data(), 'w', bytes.size());
            if (letter != nullptr) {
                m_position += static_cast<const std::uint8_t*>(letter) - bytes.data();
                return true;
            }
            if (bytes.empty()) {
                return false;
            }
            m_position += std::ssize(bytes);
        }
        return false;
    }

    void take(const WavPackBlock& block) {
        const bool isWhole = (block.flags & hasChecksum) == 0 || holdsChecksum(block);
        m_isDamaged |= !isWhole;
        m_endsInPart = false; // what looked like a part was damage
        if (block.samples == 0) {
            return;
        }
        const bool isFurtherChannel = m_runs.first() && block.index == m_lastIndex;
        if (!isFurtherChannel) {
            m_isDamaged |= m_runs.first() && block.index != m_runs.next();
            m_runs.take(block.index, block.samples);
            m_wholeSamples += isWhole ? block.samples : 0;
        } else if (!isWhole) {
            m_wholeSamples -= block.samples;
        }
        m_lastIndex = block.index;
    }

    bool holdsChecksum(const WavPackBlock& block) {
        for (const std::int64_t bytes : {longChecksumBytes, shortChecksumBytes}) {
            const std::int64_t covered = block.bytes - checksumHeaderBytes - bytes;
            const std::int64_t at = m_position + covered;
            const Bytes last = m_window.from(at, static_cast<std::size_t>(checksumHeaderBytes + bytes));
            if (covered >= static_cast<std::int64_t>(wavPackHeaderBytes) &&
                std::ssize(last) >= checksumHeaderBytes + bytes && last[0] == checksumId &&
                last[1] == bytes / 2) {
                const std::uint32_t stated = bytes == longChecksumBytes ? le32(last, 2) : le16(last, 2);
                return checksum(m_position + covered, bytes) == stated;
            }
        }
        return false;
    }

    /// Of the bytes from the position to `end`, as `bytes` bytes hold it.
    std::uint32_t checksum(std::int64_t end, std::int64_t bytes) {
        std::uint32_t sum = ~std::uint32_t{0};
        for (std::int64_t at = m_position; at + 1 < end;) {
            const Bytes there = m_window.from(at, 2);
            const std::int64_t count = std::min(std::ssize(there), end - at) / 2 * 2;
            if (count == 0) {
                break;
            }
            for (std::size_t i = 0; i < static_cast<std::size_t>(count); i += 2) {
                sum = 3 * sum + (there[i] | static_cast<std::uint32_t>(there[i + 1]) << 8);
            }
            at += count;
        }
        return bytes == longChecksumBytes ? sum : (sum ^ sum >> 16) & 0xFFFF;
    }

    SlidingWindow m_window;
    std::int64_t m_position;
    std::int64_t m_end; // of the last block
    SampleRuns m_runs;
    std::int64_t m_lastIndex = 0;
    std::int64_t m_wholeSamples = 0;
    bool m_isDamaged = false;
    bool m_endsInPart = false;
};

} // namespace

std::int64_t checkWavPack(Examination& file, std::int64_t start) {
    GuardedReader header = file.header();
    const auto first = parseWavPackBlock(header.header(start, wavPackHeaderBytes));
    if (!first) {
        return start;
    }
    const std::int64_t tagsAt = findTrailingTags(header, start);
    WavPackWalk walk(file.whole(), start, tagsAt);
    walk.walk();
    const auto secondsOf = [&](std::int64_t samples) { return static_cast<double>(samples) / first->rate; };
    const auto stated = first->total ? std::optional(secondsOf(*first->total)) : std::nullopt;
    file.noteWalk({.lengths = {.stated = stated, .found = secondsOf(walk.runs().samples())},
                   .begin = secondsOf(walk.runs().first().value_or(0)),
                   .wholeSeconds = secondsOf(walk.wholeSamples()),
                   .isDamaged = walk.isDamaged(),
                   .endsInPart = walk.endsInPart(),
                   .end = walk.end(),
                   .tagsAt = tagsAt});
    return tagsAt;
}

} // namespace velmora
