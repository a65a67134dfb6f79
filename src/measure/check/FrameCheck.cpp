#include "measure/bytes/AudioTags.h"
#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Crc.h"
#include "measure/check/ForeignFormat.h"
#include "measure/check/FormatChecks.h"
#include "measure/check/TagLength.h"
#include "measure/frames/FrameHopper.h"
#include "measure/frames/FrameStatement.h"

#include <algorithm>
#include <array>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Frames stand one directly after the other, or with tags between them. Anything else between two frames was
// written over one, or lost it. A frame of layer 3 may carry a checksum, which stands after its header and
// covers the last two bytes of it and the side information (ISO/IEC 11172-3 section 2.4.3.1).
//
// The checksums of layers 1 and 2 and of ADTS cover a part whose length only decoding tells.

constexpr std::size_t protectedHeaderAt = 2;
constexpr std::size_t checksumAt = 4;
constexpr std::size_t sideInformationAt = 6;

/// What writers state that never came back.
constexpr std::int64_t unknownFrames = 0xFFFF'FFFF;

/// A last frame of which less is missing ends as some encoders end a file.
constexpr std::int64_t harmlessPart = 4;

/// Of the layer 3 frame that `frame` begins with.
std::size_t sideInformationBytes(Bytes frame) {
    constexpr std::uint8_t version1 = 0x18;      // of byte 1
    constexpr std::uint8_t singleChannel = 0xC0; // of byte 3
    const bool isMono = (frame[3] & singleChannel) == singleChannel;
    if ((frame[1] & version1) == version1) {
        return isMono ? 17 : 32;
    }
    return isMono ? 9 : 17;
}

enum class Checksum : std::uint8_t { absent, right, wrong };

Checksum checksumOf(const AudioFrame& frame, Bytes bytes) {
    constexpr std::uint8_t hasNone = 0x01;
    const std::size_t covered = frame.isLayer3 && bytes.size() > checksumAt ? sideInformationBytes(bytes) : 0;
    if (covered == 0 || (bytes[1] & hasNone) != 0 || bytes.size() < sideInformationAt + covered) {
        return Checksum::absent;
    }
    const auto header = bytes.subspan(protectedHeaderAt, checksumAt - protectedHeaderAt);
    const std::uint16_t sum =
        Crc16::after(Crc16::after(0xFFFF, header), bytes.subspan(sideInformationAt, covered));
    return sum == be16(bytes, checksumAt) ? Checksum::right : Checksum::wrong;
}

/// Takes note of each frame of a stream, and of what stands between them.
class FrameWalk {
public:
    FrameWalk(GuardedReader& reader, std::int64_t start)
        : m_reader(reader)
        , m_end(start) {}

    void take(std::int64_t at, const AudioFrame& frame, Bytes bytes) {
        m_isInterrupted = m_isInterrupted || !areTags(m_end, at);
        const double seconds = static_cast<double>(frame.samples) / frame.rate;
        const bool isFirst = m_last.bytes == 0; // it may state others instead of holding sound
        const Checksum sum = isFirst ? Checksum::absent : checksumOf(frame, bytes);
        m_right += sum == Checksum::right ? 1 : 0;
        m_wrong += sum == Checksum::wrong ? 1 : 0;
        m_wrongSeconds += sum == Checksum::wrong ? seconds : 0;
        m_end = at + frame.bytes;
        m_last = frame;
    }

    /// After the last frame.
    std::int64_t end() const { return m_end; }

    bool isDamaged() const { return m_isInterrupted || wrongSeconds() > 0; }

    /// Of frames whose checksum is wrong. An encoder of which most are wrong computes them in its own way.
    double wrongSeconds() const { return m_right > m_wrong ? m_wrongSeconds : 0; }

    /// Whether a further frame begins where the last one ends, and goes on beyond `end`.
    bool endsInPart(std::int64_t end) {
        const auto frame = parseFrame(m_reader.headerUpTo(m_end, frameHeaderBytes, end), m_last.bytes);
        return frame && frame->kind == m_last.kind && m_end + frame->bytes > end + harmlessPart;
    }

private:
    /// Whether nothing but whole tags stands from `at` to `end`.
    bool areTags(std::int64_t at, std::int64_t end) {
        constexpr std::size_t tagHeaderBytes = 32;
        while (at < end) {
            const std::int64_t tag = tagBytesAt(m_reader.headerUpTo(at, tagHeaderBytes));
            if (tag == 0) {
                return false;
            }
            at += tag;
        }
        return true;
    }

    GuardedReader& m_reader;
    std::int64_t m_end;
    AudioFrame m_last;
    bool m_isInterrupted = false;
    std::int64_t m_right = 0;
    std::int64_t m_wrong = 0;
    double m_wrongSeconds = 0;
};

/// What the first frame states in its place, and what the tag does.
void compareLengths(Examination& file, const Lengths& lengths, std::optional<double> inTag) {
    constexpr double rounding = 1;
    file.compare(lengths, paddingTolerance);
    if (inTag) {
        file.compare({.stated = inTag, .found = lengths.found}, rounding + *inTag / 100);
    }
}

std::string_view frameFormat(GuardedReader& reader, std::int64_t at) {
    constexpr std::uint8_t layer = 0x06; // of byte 1
    const Bytes header = reader.headerUpTo(at, frameHeaderBytes);
    return header.size() > 1 && (header[1] & layer) == 0 ? adtsFrames : mpegFrames;
}

} // namespace

std::optional<std::string_view> checkFrames(Examination& file, std::int64_t start) {
    GuardedReader header = file.header();
    const std::int64_t tagsAt = findTrailingTags(header, start);
    const auto first = isFrameAt(header, start, tagsAt) || frameStatementAt(header, start, tagsAt)
                           ? std::optional(start)
                           : findFrame(header, start, tagsAt);
    if (!first) {
        return std::nullopt;
    }
    FrameWalk walk(file.whole(), *first);
    const FrameSum sum = sumFrames(file.whole(), *first, tagsAt, [&](auto at, const auto& frame, auto bytes) {
        walk.take(at, frame, bytes);
    });
    Lengths lengths{.found = sum.seconds};
    const auto statement = frameStatementAt(header, *first, tagsAt);
    if (statement && statement->header.frames < unknownFrames) {
        const Timing timing = countedTiming(sum, *statement, tagsAt - *first);
        lengths = {.stated = timing.stated, .found = timing.seconds};
    }
    compareLengths(file, lengths, lengthInTag(header));
    if (walk.endsInPart(tagsAt)) {
        file.note(FindingKind::truncated, lengths);
    }
    if (walk.isDamaged()) {
        file.note(FindingKind::damaged,
                  {.stated = lengths.stated, .found = *lengths.found - walk.wrongSeconds()});
    }
    file.compareEnds(walk.end(), tagsAt, lengths);
    return frameFormat(header, *first);
}

} // namespace velmora
