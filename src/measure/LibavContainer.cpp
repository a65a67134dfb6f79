#include "measure/LibavContainer.h"

#include "measure/LibavFile.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <span>
#include <vector>

namespace velmora {

namespace {

constexpr double jumpBackSeconds = 0.5; // a time stamp this far back begins a new segment (joined recordings)

std::span<AVStream*> streamsOf(const AVFormatContext& context) {
    return {context.streams, context.nb_streams};
}

bool isAudio(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
}

bool hasAudio(const AVFormatContext& context) {
    return std::ranges::any_of(streamsOf(context), [](const AVStream* stream) { return isAudio(*stream); });
}

std::optional<double> statedSeconds(const AVFormatContext& context) {
    double longest = 0;
    for (const AVStream* const stream : streamsOf(context)) {
        if (isAudio(*stream)) {
            longest = std::max(longest, static_cast<double>(stream->duration) * av_q2d(stream->time_base));
        }
    }
    if (!(longest > 0) && hasAudio(context)) {
        longest = static_cast<double>(context.duration) / AV_TIME_BASE; // "unknown" is negative
    }
    return longest > 0 ? std::optional(longest) : std::nullopt;
}

/// What one stream's packets add up to, in seconds.
class SegmentSum {
public:
    void add(const AVPacket& packet, double timeBase) {
        const double length = static_cast<double>(std::max<std::int64_t>(packet.duration, 0)) * timeBase;
        // A packet without a time stamp of its own goes on where the last one ended.
        const bool isStamped = packet.pts != AV_NOPTS_VALUE && packet.pts != m_lastStamp;
        m_lastStamp = packet.pts;
        const double begin = isStamped ? static_cast<double>(packet.pts) * timeBase : m_end;
        if (m_isEmpty || begin < m_last - jumpBackSeconds) {
            m_closed += m_end - m_begin;
            m_begin = std::max(begin, 0.0); // what is decoded before zero is not played
            m_end = m_begin;
            m_isEmpty = false;
        }
        m_begin = std::min(m_begin, std::max(begin, 0.0));
        m_end = std::max(m_end, begin + length);
        m_last = begin;
    }

    void trim(double seconds) { m_end = std::max(m_begin, m_end - seconds); }

    double seconds() const { return m_closed + m_end - m_begin; }

private:
    bool m_isEmpty = true;
    double m_closed = 0;
    double m_begin = 0;
    double m_end = 0;
    double m_last = 0;
    std::int64_t m_lastStamp = AV_NOPTS_VALUE;
};

/// Samples that the packet holds at its end but that are not to be played.
double trimmedSeconds(const AVPacket& packet, const AVCodecParameters& parameters) {
    constexpr std::size_t endTrimAt = 4; // four bytes of samples to skip at the start, four at the end
    std::size_t size = 0;
    const std::uint8_t* const data = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    if (data == nullptr || size < endTrimAt + 4 || parameters.sample_rate <= 0) {
        return 0;
    }
    std::uint32_t samples = 0;
    for (std::size_t i = 4; i-- > 0;) {
        samples = samples << 8 | data[endTrimAt + i];
    }
    return static_cast<double>(samples) / parameters.sample_rate;
}

std::optional<double> walkedSeconds(AVFormatContext& context, GuardedReader& reader) {
    reader.renew();
    avformat_find_stream_info(&context,
                              nullptr); // packets get their lengths; what it guesses is not looked at
    std::vector<SegmentSum> sums;
    AVPacket* packet = av_packet_alloc();
    while (packet != nullptr && !reader.isOver() && av_read_frame(&context, packet) >= 0) {
        reader.renew();
        const auto index = static_cast<std::size_t>(packet->stream_index);
        AVStream& stream = *context.streams[index];
        if (isAudio(stream)) {
            sums.resize(std::max(sums.size(), index + 1));
            sums[index].add(*packet, av_q2d(stream.time_base));
            sums[index].trim(trimmedSeconds(*packet, *stream.codecpar));
        } else {
            stream.discard = AVDISCARD_ALL;
        }
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    double longest = 0;
    for (const SegmentSum& sum : sums) {
        longest = std::max(longest, sum.seconds());
    }
    const bool isAnswer = longest > 0 || !hasAudio(context);
    return isAnswer && !reader.isOver() ? std::optional(longest) : std::nullopt;
}

} // namespace

std::optional<double> containerDuration(GuardedReader& reader, std::int64_t start,
                                        const std::string& demuxer) {
    const LibavFile file(reader, start, demuxer);
    if (file.context() == nullptr) {
        return std::nullopt;
    }
    if (const std::optional<double> stated = statedSeconds(*file.context())) {
        return stated;
    }
    const bool mayGetStreams = (file.context()->ctx_flags & AVFMTCTX_NOHEADER) != 0;
    if (!hasAudio(*file.context()) && !mayGetStreams) {
        return 0;
    }
    return walkedSeconds(*file.context(), reader);
}

std::optional<double> walkedContainerDuration(GuardedReader& reader, std::int64_t start,
                                              const std::string& demuxer) {
    const LibavFile file(reader, start, demuxer);
    return file.context() == nullptr ? std::nullopt : walkedSeconds(*file.context(), reader);
}

} // namespace velmora
