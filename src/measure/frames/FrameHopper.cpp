#include "measure/frames/FrameHopper.h"

#include "measure/bytes/AudioTags.h"
#include "measure/bytes/SlidingWindow.h"

#include <algorithm>
#include <span>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// A header of four bytes is found by chance in any data, so one header proves nothing: it must be the first
// of a chain, each header standing where the one before says that its frame ends. Once such a chain is found,
// the walk hops from header to header and adds up the samples. Where no header of the same kind follows, tags
// are stepped over and other bytes are searched for the next chain, both paid from the reader's budget.

constexpr std::size_t lookAhead = 64 << 10; // more than a chain of the longest frames

// A tag is stepped over, at the price of one read at most.
constexpr std::int64_t maxTagPrice = SlidingWindow::windowBytes;

constexpr int firstChain = 2;    // frames in a row at the very start
constexpr int nextChain = 3;     // after a gap between frames
constexpr int searchedChain = 6; // anywhere; tables of numbers make shorter chains

/// True if `bytes` begin with `count` frames of one kind, or with fewer that end exactly where `bytes` do or
/// where a tag begins: chance seldom meets such a place.
bool beginsChain(Bytes bytes, int count, std::int32_t freeBytes) {
    const auto first = parseFrame(bytes, freeBytes);
    std::optional<AudioFrame> frame = first;
    for (int found = 1; frame && frame->kind == first->kind; ++found) {
        const auto length = static_cast<std::size_t>(frame->bytes);
        if (found == count || length == bytes.size()) {
            return true;
        }
        if (length > bytes.size()) {
            return false;
        }
        bytes = bytes.subspan(length);
        if (tagBytesAt(bytes) > 0) {
            return true;
        }
        frame = parseFrame(bytes, freeBytes);
    }
    return false;
}

/// Walks the bytes of one stream.
class Hopper {
public:
    Hopper(GuardedReader& reader, std::int64_t start, std::int64_t end)
        : m_reader(reader)
        , m_window(reader, end)
        , m_position(start) {
        m_freeBytes = freeFormatBytes(m_window.from(start, lookAhead)).value_or(0);
    }

    std::int64_t position() const { return m_position; }

    bool isAtChain(int frames) {
        return beginsChain(m_window.from(m_position, lookAhead), frames, m_freeBytes);
    }

    /// Goes to the next place where a chain of `frames` begins, not before the position itself; false if
    /// none.
    bool synchronise(int frames) {
        while (m_position < m_window.end()) {
            if (isAtChain(frames)) {
                return true;
            }
            const Bytes bytes = m_window.from(m_position, lookAhead);
            if (bytes.empty()) {
                return false;
            }
            const std::int64_t tag = std::min(tagBytesAt(bytes), m_window.end() - m_position);
            const std::int64_t skipped = tag > 0 ? tag : junkBytes(bytes);
            m_tagBytes += tag;
            m_position += skipped;
            if (!m_reader.spend(std::min<std::int64_t>(skipped, maxTagPrice))) {
                return false;
            }
        }
        return false;
    }

    FrameSum sum(const FrameVisit& visit) {
        const std::int64_t start = m_position;
        std::int64_t samples = 0; // since the rate last changed
        std::int32_t rate = 0;
        std::uint32_t kind = 0;
        while (const auto frame = next(kind)) {
            if (frame->rate != rate && rate != 0) {
                m_sum.seconds += static_cast<double>(samples) / rate;
                samples = 0;
            }
            if (visit) {
                visit(m_position - frame->bytes, *frame, passedBytes(*frame));
            }
            if (m_sum.frames == 0) {
                m_sum.sampling = frameSampling(m_window.from(m_position - frame->bytes, frameHeaderBytes));
            }
            rate = frame->rate;
            kind = frame->kind;
            samples += frame->mayBeFilling && holdsOnlyFilling(passedBytes(*frame)) ? 0 : frame->samples;
            ++m_sum.frames;
            m_sum.bytes += frame->bytes;
        }
        if (rate != 0) {
            m_sum.seconds += static_cast<double>(samples) / rate;
        }
        endRun();
        m_sum.junkBytes = m_window.end() - start - m_sum.bytes - m_tagBytes;
        return m_sum;
    }

private:
    /// The whole frame at the position, or at the next one where frames go on; the position is then after
    /// it. `kind` is that of the frame before, 0 if there is none.
    std::optional<AudioFrame> next(std::uint32_t kind) {
        Bytes bytes = m_window.from(m_position, frameHeaderBytes);
        std::optional<AudioFrame> frame = parseFrame(bytes, m_freeBytes);
        if (!frame || (frame->kind != kind && kind != 0)) {
            endRun();
            if (!synchronise(nextChain)) {
                return std::nullopt;
            }
            bytes = m_window.from(m_position, frameHeaderBytes);
            frame = parseFrame(bytes, m_freeBytes);
        }
        if (!frame || frame->bytes > m_window.end() - m_position) {
            return std::nullopt;
        }
        m_position += frame->bytes;
        return frame;
    }

    void endRun() {
        m_sum.longestRun = std::max(m_sum.longestRun, m_sum.frames - m_runStart);
        m_runStart = m_sum.frames;
    }

    /// `frame`, which ends at the position.
    Bytes passedBytes(const AudioFrame& frame) {
        const auto length = static_cast<std::size_t>(frame.bytes);
        const Bytes bytes = m_window.from(m_position - frame.bytes, length);
        return bytes.first(std::min(bytes.size(), length));
    }

    /// How far to the next byte that can begin a frame or a tag. Positive.
    static std::int64_t junkBytes(Bytes bytes) {
        std::size_t junk = 1;
        while (junk < bytes.size() && bytes[junk] != 0xFF && bytes[junk] != 'I' && bytes[junk] != 'A' &&
               bytes[junk] != 'T') {
            ++junk;
        }
        return static_cast<std::int64_t>(junk);
    }

    GuardedReader& m_reader;
    SlidingWindow m_window;
    std::int64_t m_position;
    std::int32_t m_freeBytes = 0;
    std::int64_t m_tagBytes = 0; // stepped over
    FrameSum m_sum;
    std::int64_t m_runStart = 0; // frames before the run
};

} // namespace

bool isFrameAt(GuardedReader& reader, std::int64_t start, std::int64_t end) {
    return Hopper(reader, start, end).isAtChain(firstChain);
}

std::optional<std::int64_t> findFrame(GuardedReader& reader, std::int64_t start, std::int64_t end) {
    Hopper hopper(reader, start, end);
    return hopper.synchronise(searchedChain) ? std::optional(hopper.position()) : std::nullopt;
}

FrameSum sumFrames(GuardedReader& reader, std::int64_t start, std::int64_t end, const FrameVisit& visit) {
    return Hopper(reader, start, end).sum(visit);
}

} // namespace velmora
