#include "measure/check/OggStream.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"
#include "measure/formats/FlacFrame.h"

#include <algorithm>
#include <array>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// What a packet can be at most:
//
//   codec   samples of a packet                                     described in
//   Vorbis  half of the larger block, 2 to the power of the upper   Vorbis I specification, section 4.2.2
//           four bits at 28
//   Speex   those of a frame (4 bytes at 56) times the frames of    Speex codec manual, section 7.3
//           a packet (4 at 64)
//   FLAC    those of the largest block in STREAMINFO, at 17         RFC 9639, section 10.1
//   Opus    by its first byte, and its second if the lower two      RFC 6716, section 3.1
//           bits of the first are set

constexpr std::size_t vorbisBlocksAt = 28;
constexpr std::size_t speexFrameAt = 56;
constexpr std::size_t speexCountAt = 64;
constexpr std::size_t flacInfoAt = 17;

/// Samples of one channel at 48 kHz.
std::int64_t opusSamples(Bytes packet) {
    constexpr std::array<std::int64_t, 4> silk = {480, 960, 1'920, 2'880};
    constexpr std::array<std::int64_t, 4> celt = {120, 240, 480, 960};
    constexpr int firstHybrid = 12;
    constexpr int firstCelt = 16;
    if (packet.empty()) {
        return 0;
    }
    const int mode = packet[0] >> 3;
    const std::size_t size = mode & 3;
    const std::int64_t frame = mode >= firstCelt     ? celt[size]
                               : mode >= firstHybrid ? silk[size & 1]
                                                     : silk[size];
    switch (packet[0] & 3) {
    case 0:
        return frame;
    case 1:
    case 2:
        return 2 * frame;
    default:
        return packet.size() > 1 ? (packet[1] & 0x3F) * frame : 0;
    }
}

std::int64_t maxPacketSamplesOf(Bytes head) {
    if (matches(head, "\x01vorbis") && head.size() > vorbisBlocksAt) {
        return (std::int64_t{1} << (head[vorbisBlocksAt] >> 4)) / 2;
    }
    if (matches(head, "Speex   ") && head.size() >= speexCountAt + 4) {
        return std::int64_t{le32(head, speexFrameAt) & 0xFFFF} * (le32(head, speexCountAt) & 0xFF);
    }
    return 0;
}

} // namespace

OggStream::OggStream(const OggPage& first)
    : m_codec(HeaderDuration::identifyOggCodec(first.content))
    , m_isOpus(matches(first.content, "OpusHead"))
    , m_maxPacketSamples(maxPacketSamplesOf(first.content))
    , m_nextSequence(first.sequence + 1)
    , m_isEnded(first.isLast) {
    if (matches(first.content, "\177FLAC") && first.content.size() > flacInfoAt) {
        if (const auto info = parseStreamInfo(first.content.subspan(flacInfoAt))) {
            m_maxPacketSamples = info->blockSamples;
            m_statedSamples = info->samples;
        }
    }
}

bool OggStream::take(const OggPage& page) {
    const bool isNext = page.sequence == m_nextSequence;
    m_nextSequence = page.sequence + 1;
    m_isEnded |= page.isLast;
    m_lacksPages |= !isNext;
    const std::int64_t granule = page.granule.value_or(0);
    if (granule <= 0) {
        return isNext;
    }
    if (!m_begin) {
        m_begin = std::max<std::int64_t>(0, granule - maxSamplesOn(page));
        m_last = *m_begin;
    }
    if (m_lacksPages) {
        constexpr std::int64_t limit = 1LL << 60; // positions may be anything
        const std::int64_t missing = std::max<std::int64_t>(0, granule - m_last - maxSamplesOn(page));
        m_missing = std::min(m_missing + std::min(missing, limit), limit);
    }
    m_lacksPages = false;
    m_last = granule;
    return isNext;
}

double OggStream::seconds() const {
    return secondsOf(m_last - m_begin.value_or(0));
}

double OggStream::wholeSeconds() const {
    return secondsOf(m_last - m_begin.value_or(0) - m_missing);
}

double OggStream::begin() const {
    return m_codec ? static_cast<double>(m_begin.value_or(0)) / m_codec->sampleRate : 0;
}

std::optional<double> OggStream::stated() const {
    return m_codec && m_statedSamples > 0 ? std::optional(secondsOf(m_statedSamples)) : std::nullopt;
}

std::int64_t OggStream::maxSamples(Bytes packet) const {
    return m_isOpus ? opusSamples(packet) : m_maxPacketSamples;
}

std::int64_t OggStream::maxSamplesOn(const OggPage& page) const {
    constexpr std::int64_t longestOpusPacket = 5'760;
    std::int64_t samples = page.continues ? (m_isOpus ? longestOpusPacket : m_maxPacketSamples) : 0;
    forEachOggPacket(page, [&](Bytes packet) { samples += maxSamples(packet); });
    return samples;
}

/// Without what the codec leaves out at its start.
double OggStream::secondsOf(std::int64_t samples) const {
    return m_codec ? static_cast<double>(std::max<std::int64_t>(0, samples - m_codec->preSkip)) /
                         m_codec->sampleRate
                   : 0;
}

} // namespace velmora
