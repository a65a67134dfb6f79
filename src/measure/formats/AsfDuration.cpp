#include "measure/formats/AsfDuration.h"

#include "measure/bytes/ByteOrder.h"

#include <algorithm>
#include <array>
#include <vector>

namespace velmora::HeaderDuration {

namespace {

using Bytes = std::span<const std::uint8_t>;
using Guid = std::array<std::uint8_t, 16>;

constexpr std::uint64_t maxHeadBytes = 1'048'576;
constexpr std::uint64_t minHeadBytes = 31;

constexpr Guid headerObject = {0x30, 0x26, 0xB2, 0x75, 0x8E, 0x66, 0xCF, 0x11,
                               0xA6, 0xD9, 0x00, 0xAA, 0x00, 0x62, 0xCE, 0x6C};
constexpr Guid filePropertiesObject = {0xA1, 0xDC, 0xAB, 0x8C, 0x47, 0xA9, 0xCF, 0x11,
                                       0x8E, 0xE4, 0x00, 0xC0, 0x0C, 0x20, 0x53, 0x65};

constexpr std::size_t objectSize = 16;
constexpr std::size_t objectPrefix = 24; // GUID and size
constexpr std::size_t firstObject = 30;
constexpr std::size_t playDuration = 64;
constexpr std::size_t preroll = 80;
constexpr std::size_t filePropertiesRead = 88; // as much of the object as is looked at

constexpr double unitsPerSecond = 10'000'000;
constexpr double unitsPerMillisecond = 10'000;

bool hasGuid(Bytes object, const Guid& guid) {
    return std::ranges::equal(object.first(guid.size()), guid);
}

/// The first `size` bytes of a source, seen through a window that moves towards their end only. No byte is
/// read twice, and what lies between two views is read only as far as the window reaches.
class ForwardWindow {
public:
    ForwardWindow(const ByteSource& source, std::uint64_t size)
        : m_source(source)
        , m_size(size) {}

    std::uint64_t size() const { return m_size; }

    /// `count` bytes from `position`, which must not lie before that of the last view; all of them within
    /// `size`. Good until the next view. Absent after a read error.
    std::optional<Bytes> view(std::uint64_t position, std::size_t count) {
        if (position + count > m_start + m_bytes.size() && !moveTo(position, count)) {
            return std::nullopt;
        }
        return Bytes(m_bytes).subspan(position - m_start, count);
    }

private:
    bool moveTo(std::uint64_t position, std::size_t count) {
        constexpr std::size_t windowSize = 4096;
        const std::size_t passed = std::min<std::uint64_t>(position - m_start, m_bytes.size());
        m_bytes.erase(m_bytes.begin(), m_bytes.begin() + static_cast<std::ptrdiff_t>(passed));
        m_start = position;
        const std::size_t kept = m_bytes.size();
        m_bytes.resize(std::min<std::uint64_t>(m_size - position, std::max(count, windowSize)));
        return m_source.fill(static_cast<std::int64_t>(position + kept), std::span(m_bytes).subspan(kept));
    }

    const ByteSource& m_source;
    std::uint64_t m_size;
    std::uint64_t m_start = 0;
    std::vector<std::uint8_t> m_bytes;
};

std::optional<double> secondsFrom(Bytes fileProperties) {
    const auto played = static_cast<double>(le64(fileProperties, playDuration));
    const auto skipped = static_cast<double>(le64(fileProperties, preroll)) * unitsPerMillisecond;
    const double seconds = (played - skipped) / unitsPerSecond;
    return seconds > 0 ? std::optional(seconds) : std::nullopt;
}

/// Walks the objects up to `limit`, which lies within the head.
std::optional<double> walkObjects(ForwardWindow& head, std::uint64_t limit) {
    std::uint64_t position = firstObject;
    while (position + objectPrefix <= limit) {
        const std::optional<Bytes> prefix = head.view(position, objectPrefix);
        if (!prefix) {
            return std::nullopt;
        }
        const std::uint64_t size = le64(*prefix, objectSize);
        if (size < objectPrefix || size > limit - position) {
            return std::nullopt;
        }
        if (hasGuid(*prefix, filePropertiesObject) && position + filePropertiesRead <= head.size()) {
            const std::optional<Bytes> object = head.view(position, filePropertiesRead);
            return object ? secondsFrom(*object) : std::nullopt;
        }
        position += size;
    }
    return std::nullopt;
}

} // namespace

std::optional<double> asfSeconds(const ByteSource& source) {
    ForwardWindow head(source, std::min(static_cast<std::uint64_t>(source.size), maxHeadBytes));
    if (head.size() < minHeadBytes) {
        return std::nullopt;
    }
    const std::optional<Bytes> header = head.view(0, firstObject);
    if (!header || !hasGuid(*header, headerObject)) {
        return std::nullopt;
    }
    const std::uint64_t limit = std::min(le64(*header, objectSize), head.size());
    return walkObjects(head, limit);
}

std::optional<Timing> asfTiming(const ByteSource& source) {
    const std::optional<double> seconds = asfSeconds(source);
    return seconds ? std::optional(Timing{.seconds = *seconds, .stated = seconds, .way = Way::headerReader})
                   : std::nullopt;
}

} // namespace velmora::HeaderDuration
