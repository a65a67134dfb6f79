#include "measure/bytes/AudioTags.h"
#include "measure/bytes/Crc.h"
#include "measure/bytes/SlidingWindow.h"
#include "measure/check/FormatChecks.h"
#include "measure/check/SampleRuns.h"
#include "measure/formats/FlacHead.h"

#include <algorithm>
#include <cstring>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// The end of a frame is not stated: it is where the next one begins, which is known by its header's checksum
// and by the number that has to come next. Then the checksum at the end of the frame tells whether all of it
// is as it was written. Where no such header comes, the frame or its neighbour is damaged, and the walk goes
// on with the first header of any number.

/// More than a frame takes where STREAMINFO does not state it; those of CDs take 16 KiB.
constexpr std::int64_t maxFrameBytes = 1 << 20;

/// A frame of less is one even where STREAMINFO states less, and needs no search for its end.
constexpr std::int64_t usualFrameBytes = 64 << 10;

struct FlacSum {
    SampleRuns runs;
    std::int64_t wholeSamples = 0; ///< of the frames that hold their checksums
    std::int64_t end = 0;          ///< of the last frame, in the file
    bool isDamaged = false;
    bool endsInPart = false; ///< the last frame is not whole, and nothing follows
};

/// Walks the frames of one stream.
class FlacWalk {
public:
    FlacWalk(GuardedReader& reader, const FlacHead& head, std::int64_t end)
        : m_window(reader, end)
        , m_stream(head.stream)
        , m_position(head.audioAt)
        , m_maxFrameBytes(head.stream.frameBytes > 0
                              ? std::max<std::int64_t>(head.stream.frameBytes, usualFrameBytes)
                              : maxFrameBytes) {
        m_sum.end = head.audioAt;
    }

    FlacSum sum() {
        while (const auto next = nextHeader()) {
            if (m_frame) {
                close(*m_frame, *next);
            } else {
                m_sum.isDamaged |= *next > m_position; // something stands before the first frame
            }
            open(*next);
        }
        if (m_frame) {
            closeLast(*m_frame);
        }
        return m_sum;
    }

private:
    struct Open {
        FlacFrame frame;
        std::int64_t at = 0;

        std::int64_t nextSample() const { return frame.firstSample + frame.samples; }
    };

    std::optional<FlacFrame> headerAt(std::int64_t at) {
        const Bytes bytes = m_window.from(at, maxFlacHeaderBytes);
        return parseFlacFrame(bytes.first(std::min(bytes.size(), maxFlacHeaderBytes)), m_stream);
    }

    /// Where the next header stands from the byte `from` on that `isWanted`; absent if there is none before
    /// `limit`.
    template <typename Wanted>
    std::optional<std::int64_t> search(std::int64_t from, std::int64_t limit, Wanted isWanted) {
        while (from < std::min(limit, m_window.end())) {
            const Bytes bytes = m_window.from(from, maxFlacHeaderBytes);
            if (bytes.empty()) {
                return std::nullopt;
            }
            const bool isLast = from + std::ssize(bytes) >= m_window.end();
            const std::size_t searched = bytes.size() - (isLast ? 0 : maxFlacHeaderBytes - 1);
            for (std::size_t i = 0; i < searched; ++i) {
                const void* const sync = std::memchr(&bytes[i], 0xFF, searched - i);
                if (sync == nullptr) {
                    break;
                }
                i = static_cast<std::size_t>(static_cast<const std::uint8_t*>(sync) - bytes.data());
                const auto frame = parseFlacFrame(
                    bytes.subspan(i, std::min(maxFlacHeaderBytes, bytes.size() - i)), m_stream);
                if (frame && isWanted(*frame, from + static_cast<std::int64_t>(i))) {
                    return from + static_cast<std::int64_t>(i);
                }
            }
            from += static_cast<std::int64_t>(searched);
        }
        return std::nullopt;
    }

    /// The header that ends the open frame, or the first one at all. Where several others come before the
    /// expected one, that is lost: chance makes one in some hundred megabytes.
    std::optional<std::int64_t> nextHeader() {
        constexpr int enoughOthers = 3;
        const auto any = [](const FlacFrame&, std::int64_t) { return true; };
        if (!m_frame) {
            return search(m_position, m_window.end(), any);
        }
        const std::int64_t limit = m_frame->at + m_maxFrameBytes;
        std::optional<std::int64_t> other;
        int others = 0;
        bool isExpected = false;
        const auto found = search(m_frame->at + 1, limit, [&](const FlacFrame& frame, std::int64_t at) {
            isExpected = frame.firstSample == m_frame->nextSample();
            if (!isExpected && ++others == 1) {
                other = at;
            }
            return isExpected || others == enoughOthers;
        });
        if (isExpected) {
            return found;
        }
        return other ? other : search(limit, m_window.end(), any);
    }

    /// The checksum of the bytes between `from` and `to`.
    std::uint16_t checksum(std::int64_t from, std::int64_t to) {
        std::uint16_t sum = 0;
        while (from < to) {
            const Bytes bytes = m_window.from(from, 1);
            const auto count = std::min(std::ssize(bytes), to - from);
            if (count == 0) {
                break;
            }
            sum = Crc16::after(sum, bytes.first(static_cast<std::size_t>(count)));
            from += count;
        }
        return sum;
    }

    /// Where the frame that begins at `from` and is followed by no frame ends: where its checksum is first
    /// right. Absent if that is nowhere before `to`.
    std::optional<std::int64_t> endOfFrame(std::int64_t from, std::int64_t to) {
        std::uint16_t sum = 0;
        const std::int64_t limit = std::min(to, from + m_maxFrameBytes);
        for (std::int64_t at = from; at < limit;) {
            const Bytes bytes = m_window.from(at, 1);
            if (bytes.empty()) {
                break;
            }
            for (const std::uint8_t byte :
                 bytes.first(static_cast<std::size_t>(std::min(std::ssize(bytes), limit - at)))) {
                sum = Crc16::afterByte(sum, byte);
                ++at;
                if (sum == 0 && at - from > static_cast<std::int64_t>(maxFlacHeaderBytes)) {
                    return at;
                }
            }
        }
        return std::nullopt;
    }

    void open(std::int64_t at) {
        // The search for its end and its checksum are to find it in one piece.
        const std::int64_t expectedBytes = m_frame ? 2 * (at - m_frame->at) : usualFrameBytes;
        m_window.from(at, static_cast<std::size_t>(std::min(expectedBytes, usualFrameBytes)));
        m_frame = Open{headerAt(at).value_or(FlacFrame{}), at};
        m_sum.runs.take(m_frame->frame.firstSample, m_frame->frame.samples);
    }

    void close(const Open& frame, std::int64_t next) {
        const bool isWhole = checksum(frame.at, next) == 0;
        const bool isFollowed = headerAt(next).value_or(FlacFrame{}).firstSample == frame.nextSample();
        m_sum.wholeSamples += isWhole ? frame.frame.samples : 0;
        m_sum.isDamaged |= !isWhole || !isFollowed;
        m_sum.end = next;
    }

    /// The last frame may be cut off, or be followed by what is no audio.
    void closeLast(const Open& frame) {
        const std::int64_t end = m_window.end();
        const bool isAll = end - frame.at <= usualFrameBytes && checksum(frame.at, end) == 0;
        const auto whole = isAll ? std::optional(end) : endOfFrame(frame.at, end);
        m_sum.end = whole.value_or(end);
        m_sum.endsInPart = !whole;
        m_sum.wholeSamples += whole ? frame.frame.samples : 0;
        if (!whole) {
            m_sum.runs.dropLast(frame.frame.firstSample);
        }
    }

    SlidingWindow m_window;
    FlacStreamInfo m_stream;
    std::int64_t m_position; // no frame begins before this
    std::int64_t m_maxFrameBytes;
    std::optional<Open> m_frame;
    FlacSum m_sum;
};

} // namespace

std::int64_t checkFlac(Examination& file, std::int64_t start) {
    GuardedReader header = file.header();
    const auto head = readFlacHead(header, start);
    if (!head) {
        return start;
    }
    const std::int64_t tagsAt = findTrailingTags(header, head->audioAt);
    const FlacSum sum = FlacWalk(file.whole(), *head, tagsAt).sum();
    const auto secondsOf = [&](std::int64_t samples) {
        return static_cast<double>(samples) / head->stream.rate;
    };
    const auto stated =
        head->stream.samples > 0 ? std::optional(secondsOf(head->stream.samples)) : std::nullopt;
    file.noteWalk({.lengths = {.stated = stated, .found = secondsOf(sum.runs.samples())},
                   .begin = secondsOf(sum.runs.first().value_or(0)),
                   .wholeSeconds = secondsOf(sum.wholeSamples),
                   .isDamaged = sum.isDamaged,
                   .endsInPart = sum.endsInPart,
                   .end = sum.end,
                   .tagsAt = tagsAt});
    return tagsAt;
}

} // namespace velmora
