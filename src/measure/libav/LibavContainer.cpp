#include "measure/libav/DirectLibav.h"
#include "measure/libav/LibavFile.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/parseutils.h>
}

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace velmora {

namespace {

/// A time stamp this far before the last one, or this far after the end of its packet, begins a new segment:
/// recordings were joined.
constexpr double jumpBackSeconds = 0.5;
constexpr double jumpForwardSeconds = 10;

std::span<AVStream*> streamsOf(const AVFormatContext& context) {
    return {context.streams, context.nb_streams};
}

bool isAudio(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
}

bool hasAudio(const AVFormatContext& context) {
    return std::ranges::any_of(streamsOf(context), [](const AVStream* stream) { return isAudio(*stream); });
}

/// Whether something that is not audio may play, and for longer than the audio.
bool hasMoreThanAudio(const AVFormatContext& context) {
    return std::ranges::any_of(streamsOf(context), [](const AVStream* stream) {
        const bool isAttached = stream->codecpar->codec_type == AVMEDIA_TYPE_ATTACHMENT ||
                                (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
        return !isAudio(*stream) && !isAttached;
    });
}

/// What Matroska's writers note of each track; 0 if there is none.
double taggedSeconds(const AVStream& stream) {
    // The tag's language may follow its name.
    const AVDictionaryEntry* const tag =
        av_dict_get(stream.metadata, "DURATION", nullptr, AV_DICT_IGNORE_SUFFIX);
    std::int64_t microseconds = 0;
    const bool isTime = tag != nullptr && av_parse_time(&microseconds, tag->value, 1) == 0;
    return isTime ? static_cast<double>(microseconds) / AV_TIME_BASE : 0;
}

template <typename Seconds>
double maxAudio(const AVFormatContext& context, Seconds seconds) {
    double longest = 0;
    for (const AVStream* const stream : streamsOf(context)) {
        longest = std::max(longest, isAudio(*stream) ? seconds(*stream) : 0);
    }
    return longest;
}

/// Of the first audio in the file that tells it.
Sampling samplingIn(const AVFormatContext& context) {
    for (const AVStream* const stream : streamsOf(context)) {
        if (isAudio(*stream) && stream->codecpar->sample_rate > 0) {
            return samplingOf(stream->codecpar->sample_rate, stream->codecpar->ch_layout.nb_channels);
        }
    }
    return {};
}

/// Absent if nothing is stated, or only for everything together and not everything is audio.
std::optional<double> statedSeconds(const AVFormatContext& context) {
    // Negative if it is not known.
    const double whole = static_cast<double>(context.duration) / AV_TIME_BASE;
    double longest = maxAudio(context, [](const AVStream& stream) {
        return static_cast<double>(stream.duration) * av_q2d(stream.time_base);
    });
    if (!(longest > 0) && hasMoreThanAudio(context)) {
        longest = std::min(whole, maxAudio(context, taggedSeconds));
    } else if (!(longest > 0) && hasAudio(context)) {
        longest = whole;
    }
    return longest > 0 ? std::optional(longest) : std::nullopt;
}

/// How long the packet plays. Where the container's clock can only round that, its samples tell it.
double secondsOf(const AVPacket& packet, const AVStream& stream) {
    AVCodecParameters& parameters = *stream.codecpar;
    const double tick = av_q2d(stream.time_base);
    const double stated = static_cast<double>(std::max<std::int64_t>(packet.duration, 0)) * tick;
    if (parameters.sample_rate <= 0) {
        return stated;
    }
    const double bySamples =
        static_cast<double>(av_get_audio_frame_duration2(&parameters, packet.size)) / parameters.sample_rate;
    return stated > 0 && std::abs(bySamples - stated) >= tick ? stated : bySamples;
}

/// Whether libavcodec can only guess, from the bit rate, how long a packet plays.
bool isLengthGuessed(const AVStream& stream) {
    const AVCodecID codec = stream.codecpar->codec_id;
    return codec == AV_CODEC_ID_WMAV1 || codec == AV_CODEC_ID_WMAV2;
}

/// What one stream's packets add up to, in seconds.
class SegmentSum {
public:
    void add(const AVPacket& packet, const AVStream& stream) {
        ++m_packets;
        const double timeBase = av_q2d(stream.time_base);
        const double length = secondsOf(packet, stream);
        // A packet without a time stamp of its own goes on where the last one ended.
        const bool isStamped = packet.pts != AV_NOPTS_VALUE && packet.pts != m_lastStamp;
        m_lastStamp = packet.pts;
        const double begin = isStamped ? static_cast<double>(packet.pts) * timeBase : m_end;
        if (m_isEmpty || begin < m_last - jumpBackSeconds || begin > m_end + jumpForwardSeconds) {
            m_closed += segment();
            m_begin = std::max(begin, 0.0); // what is decoded before zero is not played
            m_end = m_begin;
            m_lengths = 0;
            m_isEmpty = false;
        }
        m_begin = std::min(m_begin, std::max(begin, 0.0));
        m_end = std::max(m_end, begin + length);
        m_lengths += isLengthGuessed(stream) ? 0 : std::max(length + std::min(begin, 0.0), 0.0);
        m_last = begin;
    }

    void trim(double seconds) {
        m_end = std::max(m_begin, m_end - seconds);
        m_lengths -= seconds;
    }

    double seconds() const { return m_closed + segment(); }

    double end() const { return m_end; }

    std::int64_t packets() const { return m_packets; }

private:
    /// By the time stamps, unless packets overlap by them: they play one after the other all the same.
    double segment() const {
        const double span = m_end - m_begin;
        return m_lengths > span + jumpBackSeconds ? m_lengths : span;
    }

    bool m_isEmpty = true;
    double m_closed = 0;
    double m_begin = 0;
    double m_end = 0;
    double m_last = 0;
    double m_lengths = 0; // of the segment's packets, one after the other
    std::int64_t m_lastStamp = AV_NOPTS_VALUE;
    std::int64_t m_packets = 0;
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

/// Adds up the packets of every stream from where the file stands to its end.
std::vector<SegmentSum> sumPackets(AVFormatContext& context, GuardedReader& reader) {
    std::vector<SegmentSum> sums;
    AVPacket* packet = av_packet_alloc();
    while (packet != nullptr && !reader.isOver() && av_read_frame(&context, packet) >= 0) {
        reader.renew();
        const auto index = static_cast<std::size_t>(packet->stream_index);
        AVStream& stream = *context.streams[index];
        if (isAudio(stream)) {
            sums.resize(std::max(sums.size(), index + 1));
            sums[index].add(*packet, stream);
            sums[index].trim(trimmedSeconds(*packet, *stream.codecpar));
        } else {
            stream.discard = AVDISCARD_ALL;
        }
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    return sums;
}

/// Packets get their lengths by this; what it guesses is not looked at.
void learnPackets(AVFormatContext& context, GuardedReader& reader) {
    reader.renew();
    avformat_find_stream_info(&context, nullptr);
}

/// The longest of `sums` by `seconds`, a member function of theirs.
Timing maxOf(const std::vector<SegmentSum>& sums, double (SegmentSum::*seconds)() const) {
    Timing timing{.basis = Basis::counted, .way = Way::libavformat};
    for (const SegmentSum& sum : sums) {
        if ((sum.*seconds)() > timing.seconds) {
            timing.seconds = (sum.*seconds)();
            timing.frames = sum.packets();
        }
    }
    return timing;
}

/// By all packets, since what the file may state is open to `doubt`.
std::optional<Timing> walkedTiming(AVFormatContext& context, GuardedReader& reader, Doubt doubt) {
    const std::optional<double> stated = statedSeconds(context);
    learnPackets(context, reader);
    Timing timing = maxOf(sumPackets(context, reader), &SegmentSum::seconds);
    timing.sampling = samplingIn(context);
    timing.stated = stated;
    timing.doubt = stated ? doubt : Doubt::none;
    const bool isAnswer = timing.seconds > 0 || !hasAudio(context);
    return isAnswer && !reader.isOver() ? std::optional(timing) : std::nullopt;
}

/// Where the last audio packets end, found by the file's index; absent if there are none after the place that
/// the index leads to.
std::optional<Timing> soughtTiming(AVFormatContext& context, GuardedReader& reader) {
    learnPackets(context, reader);
    if (av_seek_frame(&context, -1, context.duration, AVSEEK_FLAG_BACKWARD) < 0) {
        return std::nullopt;
    }
    Timing timing = maxOf(sumPackets(context, reader), &SegmentSum::end);
    timing.sampling = samplingIn(context);
    return timing.seconds > 0 && !reader.isOver() ? std::optional(timing) : std::nullopt;
}

} // namespace

std::optional<Timing> DirectLibav::duration(GuardedReader& reader, std::int64_t start,
                                            const std::string& demuxer, Doubt doubt) const {
    const LibavFile file(reader, start, demuxer);
    AVFormatContext* const context = file.context();
    if (context == nullptr) {
        return std::nullopt;
    }
    const std::optional<double> stated = statedSeconds(*context);
    if (doubt != Doubt::none) {
        return walkedTiming(*context, reader, doubt);
    }
    const bool mayGetStreams = (context->ctx_flags & AVFMTCTX_NOHEADER) != 0;
    if (stated || (!hasAudio(*context) && !mayGetStreams)) {
        return Timing{.seconds = stated.value_or(0),
                      .stated = stated,
                      .way = Way::libavformat,
                      .sampling = samplingIn(*context)};
    }
    if (hasMoreThanAudio(*context) && context->duration > 0) {
        // If there is no index, all packets are read from a fresh start: a doubt makes it so.
        const auto sought = soughtTiming(*context, reader);
        return sought ? sought : duration(reader, start, demuxer, Doubt::disagrees);
    }
    return walkedTiming(*context, reader, doubt);
}

} // namespace velmora
