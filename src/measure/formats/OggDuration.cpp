#include "measure/formats/OggDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <vector>

namespace velmora::HeaderDuration {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::int64_t minFileBytes = 65;
constexpr std::int64_t maxTailBytes = 262'144;

constexpr std::string_view capturePattern = "OggS";
constexpr std::size_t structureVersion = 4;
constexpr std::size_t granulePosition = 6;
constexpr std::size_t segmentCount = 26;
constexpr std::size_t segmentTable = 27; // also the size of a page header without it
constexpr std::size_t maxSegments = 255;

constexpr std::uint64_t noGranule = 0xFFFF'FFFF'FFFF'FFFF;

/// How much of the first packet is looked at, and how much must follow the first page's header.
constexpr std::size_t maxIdentification = 80;
constexpr std::size_t minIdentification = 41;

constexpr std::size_t minVorbis = 16;
constexpr std::size_t vorbisChannels = 11;
constexpr std::size_t vorbisRate = 12;
constexpr std::size_t minOpus = 19;
constexpr std::size_t opusChannels = 9;
constexpr std::size_t opusPreSkip = 10;
constexpr std::uint32_t opusRate = 48'000;
constexpr std::size_t minSpeex = 40;
constexpr std::size_t speexRate = 36;
constexpr std::size_t speexChannels = 48;
constexpr std::size_t minFlac = 31;
constexpr std::size_t flacRate = 27;

std::optional<OggCodec> withRate(std::uint32_t sampleRate, std::uint32_t channels) {
    return sampleRate == 0 ? std::nullopt : std::optional(OggCodec{sampleRate, 0, channels});
}

/// The codec named on the first page.
std::optional<OggCodec> firstPageCodec(const ByteSource& source) {
    std::array<std::uint8_t, segmentTable + maxSegments + maxIdentification> buffer{};
    const auto length = std::min(static_cast<std::size_t>(source.size), buffer.size());
    const std::span<std::uint8_t> head = std::span(buffer).first(length);
    if (!source.fill(0, head) || !matches(head, capturePattern)) {
        return std::nullopt;
    }
    const std::size_t packet = segmentTable + head[segmentCount];
    if (head.size() < packet + minIdentification) {
        return std::nullopt;
    }
    return identifyOggCodec(head.subspan(packet, std::min(maxIdentification, head.size() - packet)));
}

/// The granule position of the page whose header `bytes` begins with; absent when it is no page header, or
/// one without a granule position that could end a stream.
std::optional<std::uint64_t> pageGranule(Bytes bytes) {
    if (!matches(bytes, capturePattern) || bytes[structureVersion] != 0) {
        return std::nullopt;
    }
    const std::uint64_t granule = le64(bytes, granulePosition);
    return granule == 0 || granule == noGranule ? std::nullopt : std::optional(granule);
}

/// The same of the last such page header that begins among the first `searched` bytes of `window`.
std::optional<std::uint64_t> lastGranuleIn(Bytes window, std::size_t searched) {
    while (const void* const letter = ::memrchr(window.data(), capturePattern.front(), searched)) {
        searched = static_cast<std::size_t>(static_cast<const std::uint8_t*>(letter) - window.data());
        if (const auto granule = pageGranule(window.subspan(searched))) {
            return granule;
        }
    }
    return std::nullopt;
}

/// The granule position of the last page that has one. The tail is searched from its end in windows that
/// double, so that a common file, whose last page is below 8 KiB, costs one small read.
std::optional<std::uint64_t> lastGranule(const ByteSource& source) {
    constexpr std::int64_t firstStep = 8192;
    constexpr std::size_t overlap = granulePosition + sizeof(std::uint64_t) - 1;

    const std::int64_t tailStart = source.size - std::min(source.size, maxTailBytes);
    std::int64_t end = source.size - static_cast<std::int64_t>(segmentTable) + 1; // no header at or after it
    std::vector<std::uint8_t> window; // from the first byte searched to the last that a header there needs
    for (std::int64_t step = firstStep; end > tailStart; step *= 2) {
        const std::int64_t start = std::max(tailStart, end - step);
        const auto searched = static_cast<std::size_t>(end - start);
        window.resize(std::min(window.size(), overlap));
        const std::size_t missing = searched + overlap - window.size();
        window.insert(window.begin(), missing, 0);
        if (!source.fill(start, std::span(window).first(missing))) {
            return std::nullopt;
        }
        if (const auto granule = lastGranuleIn(window, searched)) {
            return granule;
        }
        end = start;
    }
    return std::nullopt;
}

} // namespace

std::optional<OggCodec> identifyOggCodec(Bytes packet) {
    if (packet.size() >= minVorbis && matches(packet, "\x01vorbis")) {
        return withRate(le32(packet, vorbisRate), packet[vorbisChannels]);
    }
    if (packet.size() >= minOpus && matches(packet, "OpusHead")) {
        return OggCodec{opusRate, le16(packet, opusPreSkip), packet[opusChannels]};
    }
    if (packet.size() >= minSpeex && matches(packet, "Speex   ")) {
        const bool hasChannels = packet.size() >= speexChannels + 4;
        return withRate(le32(packet, speexRate), hasChannels ? le32(packet, speexChannels) : 0);
    }
    if (packet.size() >= minFlac && matches(packet, "\177FLAC")) {
        const unsigned bits = packet[flacRate] << 16 | packet[flacRate + 1] << 8 | packet[flacRate + 2];
        return withRate(bits >> 4, (bits >> 1 & 0x07) + 1);
    }
    return std::nullopt;
}

std::optional<Timing> oggTiming(const ByteSource& source) {
    if (source.size < minFileBytes) {
        return std::nullopt;
    }
    const std::optional<OggCodec> codec = firstPageCodec(source);
    const std::optional<std::uint64_t> granule = codec ? lastGranule(source) : std::nullopt;
    if (!granule) {
        return std::nullopt;
    }
    const double samples = static_cast<double>(*granule) - codec->preSkip;
    return samples > 0 ? std::optional(Timing{.seconds = samples / codec->sampleRate,
                                              .basis = Basis::counted,
                                              .way = Way::headerReader,
                                              .sampling = samplingOf(codec->sampleRate, codec->channels)})
                       : std::nullopt;
}

std::optional<double> oggSeconds(const ByteSource& source) {
    const std::optional<Timing> timing = oggTiming(source);
    return timing ? std::optional(timing->seconds) : std::nullopt;
}

} // namespace velmora::HeaderDuration
