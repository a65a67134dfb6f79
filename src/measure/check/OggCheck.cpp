#include "measure/bytes/AudioTags.h"
#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"
#include "measure/bytes/SlidingWindow.h"
#include "measure/check/FormatChecks.h"
#include "measure/check/OggPage.h"
#include "measure/check/OggStream.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string_view>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Each page holds a checksum, and each stream numbers its pages, so that none can be lost unseen. Several
// streams may play at the same time, and after them others, as internet radio sends them: such a chain plays
// the sum of its links, of which the last page states but the last.

class OggWalk {
public:
    OggWalk(GuardedReader& reader, std::int64_t start, std::int64_t end)
        : m_window(reader, end)
        , m_position(start)
        , m_end(start) {}

    void walk() {
        while (const auto page = next()) {
            take(*page);
        }
        closeLink();
    }

    double seconds() const { return m_seconds; }

    double wholeSeconds() const { return m_wholeSeconds; }

    /// Where the clock of the first stream begins, in seconds; 0 as well where that is within its first page.
    double begin() const { return m_begin; }

    std::optional<double> stated() const { return m_links == 1 ? m_stated : std::nullopt; }

    std::int64_t links() const { return m_links; }

    std::int64_t end() const { return m_end; }

    bool isDamaged() const { return m_isDamaged; }

    /// Whether a stream lacks its last page.
    bool endsInPart() const { return m_endsInPart; }

private:
    /// The next whole page; what stands before it is damage.
    std::optional<OggPage> next() {
        while (m_position < m_window.end()) {
            const auto page = pageAt(m_position);
            if (page && page->isWhole) {
                m_isDamaged |= m_position != m_end;
                m_position += static_cast<std::int64_t>(page->bytes);
                m_end = m_position;
                return page;
            }
            m_position += page && m_isFollowed ? static_cast<std::int64_t>(page->bytes) : 1;
            if (!seekPattern()) {
                return std::nullopt;
            }
        }
        return std::nullopt;
    }

    /// The page at `at`, which another follows, or which stands where one has to. Others would cost a
    /// checksum of 64 KiB for each time that their pattern occurs.
    std::optional<OggPage> pageAt(std::int64_t at) {
        constexpr std::string_view pattern = "OggS";
        const auto size = oggPageBytes(m_window.from(at, maxOggHeaderBytes));
        const Bytes bytes = size ? m_window.from(at, *size + pattern.size()) : Bytes();
        if (!size || bytes.size() < *size) {
            return std::nullopt;
        }
        m_isFollowed = bytes.size() == *size || matches(bytes.subspan(*size), pattern);
        return m_isFollowed || at == m_end ? parseOggPage(bytes) : std::nullopt;
    }

    /// Goes to the next byte that a page may begin with; false if there is none.
    bool seekPattern() {
        while (m_position < m_window.end()) {
            const Bytes bytes = m_window.from(m_position, 1);
            if (bytes.empty()) {
                return false;
            }
            const void* const letter = std::memchr(bytes.data(), 'O', bytes.size());
            if (letter != nullptr) {
                m_position += static_cast<const std::uint8_t*>(letter) - bytes.data();
                return true;
            }
            m_position += std::ssize(bytes);
        }
        return false;
    }

    void take(const OggPage& page) {
        if (page.isFirst && m_isInside) {
            closeLink();
        }
        m_isInside = !page.isFirst;
        if (page.isFirst) {
            m_streams.insert_or_assign(page.serial, OggStream(page));
        } else if (const auto stream = m_streams.find(page.serial); stream != m_streams.end()) {
            m_isDamaged |= !stream->second.take(page);
        } else {
            m_isDamaged = true; // the first page of its stream is missing
        }
    }

    /// All streams of a link have ended.
    void closeLink() {
        double longest = 0;
        double longestWhole = 0;
        for (const auto& [serial, stream] : m_streams) {
            longest = std::max(longest, stream.seconds());
            longestWhole = std::max(longestWhole, stream.wholeSeconds());
            m_stated = stream.stated() ? stream.stated() : m_stated;
            m_endsInPart |= !stream.isEnded();
            m_begin = m_links == 0 ? std::max(m_begin, stream.begin()) : m_begin;
        }
        m_links += m_streams.empty() ? 0 : 1;
        m_seconds += longest;
        m_wholeSeconds += longestWhole;
        m_streams.clear();
    }

    SlidingWindow m_window;
    std::int64_t m_position;
    std::int64_t m_end;                           // of the last whole page
    std::map<std::uint32_t, OggStream> m_streams; // of the link, by serial number
    bool m_isFollowed = false; // another page, or the end, comes after the one that was met last
    bool m_isInside = false;   // a page came that is not the first of its stream
    double m_seconds = 0;
    double m_wholeSeconds = 0;
    double m_begin = 0;
    std::optional<double> m_stated;
    std::int64_t m_links = 0;
    bool m_isDamaged = false;
    bool m_endsInPart = false;
};

} // namespace

std::int64_t checkOgg(Examination& file, std::int64_t start) {
    GuardedReader header = file.header();
    const std::int64_t tagsAt = findTrailingTags(header, start);
    OggWalk walk(file.whole(), start, tagsAt);
    walk.walk();
    Lengths lengths{.stated = walk.stated(), .found = walk.seconds()};
    file.compare(lengths, paddingTolerance);
    if (walk.links() > 1) { // the length that the last page tells is taken for that of the file
        lengths.stated = HeaderDuration::oggSeconds(header.source());
        if (lengths.stated && *lengths.found > *lengths.stated + paddingTolerance) {
            file.note(FindingKind::longer, lengths);
        }
    }
    if (walk.endsInPart()) {
        file.note(FindingKind::truncated, {.stated = walk.stated(), .found = walk.seconds()});
    }
    if (walk.begin() > paddingTolerance) {
        file.note(FindingKind::offset, {.found = walk.begin()});
    }
    if (walk.isDamaged()) {
        file.note(FindingKind::damaged, {.stated = walk.stated(), .found = walk.wholeSeconds()});
    }
    file.compareEnds(walk.end(), tagsAt, lengths);
    return tagsAt;
}

} // namespace velmora
