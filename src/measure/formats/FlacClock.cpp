#include "measure/formats/FlacClock.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace velmora {

namespace {

constexpr std::int64_t places = 64;
constexpr int maxSearches = 1024; // some 20 for each jump

/// A frame that another one follows, which proves both.
struct Mark {
    std::int64_t at = 0; ///< the header of `frame`
    FlacFrame frame;
    FlacFrame next;

    /// By the blocks of its own part of the stream.
    std::int64_t firstSample() const {
        return frame.hasFixedSize ? frame.number * frame.samples : frame.number;
    }

    double secondsOf(std::int64_t samples) const { return static_cast<double>(samples) / frame.rate; }

    /// Whether nothing speaks against one clock from here to `later`.
    bool reaches(const Mark& later) const {
        return frame.rate == later.frame.rate && frame.hasFixedSize == later.frame.hasFixedSize &&
               (!frame.hasFixedSize || frame.samples == later.frame.samples) &&
               later.firstSample() >= firstSample() + frame.samples;
    }
};

class Clock {
public:
    Clock(GuardedReader& reader, const FlacStreamInfo& stream, const FlacExtent& extent)
        : m_reader(reader)
        , m_stream(stream)
        , m_extent(extent)
        , m_headersEnd(extent.lastAt + static_cast<std::int64_t>(maxFlacHeaderBytes)) {}

    std::optional<double> seconds() {
        const auto first = markFrom(m_extent.firstAt, m_extent.lastAt);
        const auto last = lastMark();
        if (!first || !last) {
            return std::nullopt;
        }
        double sum = 0;
        Mark reached = *first;
        const std::int64_t step = (m_extent.lastAt - m_extent.firstAt) / places;
        for (std::int64_t place = 1; place < places; ++place) {
            const std::int64_t from = std::max(reached.at + 1, m_extent.firstAt + place * step);
            if (const auto mark = from < last->at ? markFrom(from, last->at) : std::nullopt) {
                sum += between(reached, *mark);
                reached = *mark;
            }
        }
        sum += between(reached, *last);
        sum += last->secondsOf(last->frame.samples + (m_extent.hasWholeEnd ? last->next.samples : 0));
        return m_searches <= maxSearches ? std::optional(sum) : std::nullopt;
    }

private:
    /// Seconds from the start of the frame at `earlier` to that of the one at `later`.
    double between(const Mark& earlier, const Mark& later) {
        if (earlier.at == later.at) {
            return 0;
        }
        if (earlier.reaches(later)) {
            return earlier.secondsOf(later.firstSample() - earlier.firstSample());
        }
        for (std::int64_t end = later.at; end > earlier.at + 1;) {
            const std::int64_t middle = earlier.at + (end - earlier.at) / 2;
            if (const auto mark = markFrom(middle, end)) {
                return between(earlier, *mark) + between(*mark, later);
            }
            end = middle;
        }
        return earlier.secondsOf(earlier.frame.samples + earlier.next.samples); // the clock jumps after them
    }

    /// The first mark at or after `from` and before `end`.
    std::optional<Mark> markFrom(std::int64_t from, std::int64_t end) {
        constexpr std::int64_t firstBytes = 32 << 10;
        constexpr std::int64_t maxBytes = 1 << 20; // more than most pictures between two joined files
        const std::int64_t maxFrame =
            std::max<std::int64_t>(m_stream.frameBytes, firstBytes); // before its next
        for (std::int64_t count = firstBytes; m_searches <= maxSearches; count *= 4) {
            const std::int64_t rest = std::min(end + maxFrame, m_headersEnd) - from;
            const std::vector<Mark> marks = marksIn(from, std::min(count, rest));
            const auto mark = std::ranges::find_if(marks, [end](const Mark& m) { return m.at < end; });
            if (mark != marks.end()) {
                m_reader.renew();
                return *mark;
            }
            if (count >= rest || count * 4 > maxBytes) {
                break;
            }
        }
        return std::nullopt;
    }

    /// The mark whose next frame is the last one.
    std::optional<Mark> lastMark() {
        constexpr std::int64_t bytes = 256 << 10; // more than two frames
        const std::int64_t from = std::max(m_extent.firstAt, m_headersEnd - bytes);
        const std::vector<Mark> marks = marksIn(from, m_headersEnd - from);
        const auto nextAt = static_cast<std::size_t>(m_extent.lastAt - from);
        const auto mark = std::ranges::find(marks, nextAt, [](const Mark& m) { return m.next.at; });
        return mark != marks.end() ? std::optional(*mark) : std::nullopt;
    }

    /// All marks in `count` bytes at `from`, in order.
    std::vector<Mark> marksIn(std::int64_t from, std::int64_t count) {
        constexpr std::size_t maxFalse = 3; // headers made by chance between a frame and the next
        ++m_searches;
        m_buffer.resize(static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
        m_buffer.resize(m_reader.search(from, m_buffer));
        std::vector<FlacFrame> frames;
        for (auto frame = flacFrameBefore(m_buffer, m_buffer.size(), m_stream); frame;
             frame = flacFrameBefore(m_buffer, frame->at, m_stream)) {
            frames.push_back(*frame);
        }
        std::ranges::reverse(frames);
        std::vector<Mark> marks;
        for (std::size_t i = 0; i < frames.size(); ++i) {
            const std::size_t end = std::min(frames.size(), i + 2 + maxFalse);
            for (std::size_t next = i + 1; next < end; ++next) {
                if (follows(frames[next], frames[i])) {
                    marks.push_back(
                        {from + static_cast<std::int64_t>(frames[i].at), frames[i], frames[next]});
                    break;
                }
            }
        }
        return marks;
    }

    GuardedReader& m_reader;
    const FlacStreamInfo m_stream;
    const FlacExtent m_extent;
    const std::int64_t m_headersEnd;
    std::vector<std::uint8_t> m_buffer;
    int m_searches = 0;
};

} // namespace

std::optional<double> flacClockSeconds(GuardedReader& reader, const FlacStreamInfo& stream,
                                       const FlacExtent& extent) {
    return Clock(reader, stream, extent).seconds();
}

} // namespace velmora
