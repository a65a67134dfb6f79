#include "measure/formats/WaveFormat.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/frames/FrameStreamDuration.h"

namespace velmora {

namespace {

// PCM divides its bytes by those of a frame; ADPCM and GSM have blocks of a fixed number of frames, the last
// of which may be cut short; MPEG audio inside is counted frame by frame.
//
// "fmt " (Microsoft, "Multiple Channel Audio Data and WAVE Files"):
//
//   offset  size  field
//        0     2  format tag
//        2     2  channels
//        4     4  frames a second
//        8     4  bytes a second
//       12     2  bytes of a block
//       14     2  bits of a sample
//       16     2  size of what follows
//       18     2  frames of a block (compressed formats) or valid bits (extensible)
//       20     4  speakers (extensible)
//       24    16  real format (extensible), a GUID; one half of its first four bytes is the tag: the lower
//       one,
//                 but some writers of the highest byte first put the tag first

constexpr std::size_t tagAt = 0;
constexpr std::size_t channelsAt = 2;
constexpr std::size_t rateAt = 4;
constexpr std::size_t byteRateAt = 8;
constexpr std::size_t blockBytesAt = 12;
constexpr std::size_t bitsAt = 14;
constexpr std::size_t baseBytes = 16;
constexpr std::size_t extensionAt = 18;
constexpr std::size_t subformatAt = 24;

// Format tags (RFC 2361 and mmreg.h).
enum Tag : std::uint16_t {
    pcm = 0x0001,
    microsoftAdpcm = 0x0002,
    floatingPoint = 0x0003,
    aLaw = 0x0006,
    muLaw = 0x0007,
    imaAdpcm = 0x0011,
    yamahaAdpcm = 0x0020,
    gsm610 = 0x0031,
    mpegLayers12 = 0x0050,
    mpegLayer3 = 0x0055,
    rawAac = 0x00FF,
    adtsAac = 0x1600,
    extensible = 0xFFFE,
};

/// Frames in a whole block of ADPCM or GSM, or in one cut down to `bytes`. 0 if the tag is none of these.
std::int64_t framesOfBlock(const WaveFormat& format, std::int64_t bytes) {
    const std::int64_t channels = format.channels;
    switch (format.tag) {
    case microsoftAdpcm: // two samples and five bytes of state a channel, then nibbles
        return bytes <= 7 * channels ? 0 : (bytes - 7 * channels) * 2 / channels + 2;
    case imaAdpcm: // one sample and two bytes of state a channel, then nibbles
        if (format.bits != 4) {
            return 0;
        }
        return bytes <= 4 * channels ? 0 : (bytes - 4 * channels) * 2 / channels + 1;
    case yamahaAdpcm:
        return bytes * 2 / channels;
    case gsm610: // pairs of GSM frames
        return bytes / 65 * 320;
    default:
        return 0;
    }
}

/// Absent for a format that is not known.
std::optional<std::int64_t> framesOf(const WaveFormat& format, std::int64_t bytes) {
    switch (format.tag) {
    case pcm:
    case floatingPoint:
    case aLaw:
    case muLaw: {
        const std::int64_t frameBytes =
            format.blockBytes > 0 ? format.blockBytes : format.channels * ((format.bits + 7) / 8);
        return frameBytes > 0 ? std::optional(bytes / frameBytes) : std::nullopt;
    }
    default:
        break;
    }
    const std::int64_t computed = framesOfBlock(format, format.blockBytes);
    if (computed <= 0) {
        return std::nullopt;
    }
    const std::int64_t whole = format.blockSamples > 0 ? format.blockSamples : computed;
    return bytes / format.blockBytes * whole + framesOfBlock(format, bytes % format.blockBytes);
}

/// By the bytes of frames or blocks.
std::optional<Timing> blockTiming(const WaveFormat& format, const WaveData& data) {
    const auto frames = framesOf(format, data.end - data.start);
    if (!frames) {
        return std::nullopt;
    }
    const auto secondsOf = [&format](std::int64_t count) {
        return static_cast<double>(count) / static_cast<double>(format.rate);
    };
    const std::int64_t slack = 2 * framesOfBlock(format, format.blockBytes);
    const bool mayBeFilledUp = slack > 0 && data.statedFrames.has_value();
    if (mayBeFilledUp && *data.statedFrames <= *frames && *data.statedFrames > *frames - slack) {
        return statedTiming(secondsOf(*data.statedFrames));
    }
    std::optional<std::int64_t> stated = data.statedFrames;
    if (!mayBeFilledUp) {
        stated = data.statedBytes ? framesOf(format, *data.statedBytes) : std::nullopt;
    }
    return sizedTiming(secondsOf(*frames), stated ? std::optional(secondsOf(*stated)) : std::nullopt);
}

} // namespace

std::optional<WaveFormat> parseWaveFormat(std::span<const std::uint8_t> chunk, bool isBigEndian) {
    if (chunk.size() < baseBytes) {
        return std::nullopt;
    }
    const auto u16 = [&](std::size_t at) { return isBigEndian ? be16(chunk, at) : le16(chunk, at); };
    const auto u32 = [&](std::size_t at) { return isBigEndian ? be32(chunk, at) : le32(chunk, at); };
    WaveFormat format{
        u16(tagAt), u16(channelsAt), u32(rateAt), u32(byteRateAt), u16(blockBytesAt), u16(bitsAt), 0};
    if (format.tag == extensible && chunk.size() >= subformatAt + 4) {
        const std::uint32_t halves = u32(subformatAt);
        format.tag = static_cast<std::uint16_t>((halves & 0xFFFF) != 0 ? halves : halves >> 16);
    } else if (chunk.size() >= extensionAt + 2) {
        format.blockSamples = u16(extensionAt);
    }
    return format.rate > 0 && format.channels > 0 ? std::optional(format) : std::nullopt;
}

std::optional<Timing> waveTiming(GuardedReader& reader, const WaveFormat& format, const WaveData& data) {
    switch (format.tag) {
    case mpegLayers12:
    case mpegLayer3:
    case rawAac:
    case adtsAac:
        return searchedFrameDuration(reader, data.start, data.end);
    default:
        return sampled(blockTiming(format, data),
                       samplingOf(static_cast<double>(format.rate), format.channels));
    }
}

} // namespace velmora
