#include "measure/formats/AdifDuration.h"

#include "measure/bytes/AudioTags.h"
#include "measure/bytes/BitReader.h"
#include "measure/frames/FrameHeader.h"
#include "measure/libav/Libav.h"

#include <algorithm>
#include <span>
#include <vector>

namespace velmora {

namespace {

// The header (ISO/IEC 13818-7 section 6.1.1), in bits:
//
//   bits  field
//     32  "ADIF"
//      1  there is a number of the copyright
//     72  that number, if so
//      2  original, home
//      1  variable bit rate
//     23  bit rate
//      4  programs less one
//
// and for each program, before the audio begins at a whole byte:
//
//   bits  field
//     20  fullness of the buffer, if the bit rate is constant
//      4  number of the program
//      2  profile
//      4  index of the sample rate
//     12  elements in front, at the side, at the back: 4 each
//      2  elements of low frequencies
//      3  elements of data
//      4  elements that are coupled
//      3  mixed down to mono, to stereo, by matrix: each a bit that says whether there are 4, 4, 3 bits more
//         5 for an element in front, at the side, at the back and for a coupled one, 4 for others
//         up to the next whole byte, then a byte of size and a comment
//
// A decoder wants to know the program as MP4 describes it (ISO/IEC 14496-3 section 1.6.2.1): 5 bits of
// profile plus one, 4 of the sample rate's index, 7 zeros, the program from its number on. The last bytes say
// that there is no replicated upper half of the spectrum: with it, samples at twice the rate would come out.

using Bytes = std::span<const std::uint8_t>;

constexpr std::int64_t blockSamples = 1024;
constexpr std::int64_t maxBytes = 16 << 20; // minutes of music; the helper holds it twice

struct AdifHeader {
    std::int64_t bytes = 0; ///< where the audio begins
    std::int32_t rate = 0;
    std::vector<std::uint8_t> description; ///< for the decoder
};

/// The bits of `bytes` from `start` to `end`, filled up to whole bytes with zeros.
std::vector<std::uint8_t> bitsBetween(Bytes bytes, std::size_t start, std::size_t end) {
    BitReader bits(bytes);
    bits.skip(start);
    std::vector<std::uint8_t> copy;
    for (std::size_t left = end - start; left > 0; left -= std::min<std::size_t>(left, 8)) {
        const int count = static_cast<int>(std::min<std::size_t>(left, 8));
        copy.push_back(static_cast<std::uint8_t>(bits.take(count) << (8 - count)));
    }
    return copy;
}

/// Takes a program, and makes of it what the decoder wants to know if that is still empty.
void takeProgram(Bytes bytes, BitReader& bits, AdifHeader& header) {
    const std::size_t start = bits.position();
    bits.skip(4);
    const std::uint32_t profile = bits.take(2);
    const std::uint32_t rateIndex = bits.take(4);
    std::size_t elements = 0;
    for (int place = 0; place < 3; ++place) {
        elements += bits.take(4);
    }
    const std::size_t others = bits.take(2) + bits.take(3);
    elements += bits.take(4);
    for (const std::size_t mixdown : {4, 4, 3}) {
        bits.skip(bits.take(1) * mixdown);
    }
    bits.skip(5 * elements + 4 * others);
    if (header.description.empty() && !bits.isBeyondEnd()) {
        header.rate = aacRate(rateIndex);
        header.description = bitsBetween(bytes, start, bits.position());
        const std::uint32_t first = (profile + 1) << 11 | rateIndex << 7;
        const std::uint8_t head[] = {static_cast<std::uint8_t>(first >> 8), static_cast<std::uint8_t>(first)};
        header.description.insert(header.description.begin(), std::begin(head), std::end(head));
        constexpr std::uint8_t noComment = 0;
        header.description.insert(header.description.end(), {noComment, 0x56, 0xE5, 0});
    }
    bits.align();
    bits.skip(std::size_t{8} * bits.take(8));
}

std::optional<AdifHeader> parseAdif(Bytes bytes) {
    BitReader bits(bytes);
    bits.skip(32);
    bits.skip(std::size_t{72} * bits.take(1));
    bits.skip(2);
    const bool isVariable = bits.take(1) == 1;
    bits.skip(23);
    AdifHeader header;
    for (std::uint32_t programs = bits.take(4) + 1; programs > 0; --programs) {
        bits.skip(isVariable ? 0 : 20);
        takeProgram(bytes, bits, header);
    }
    header.bytes = static_cast<std::int64_t>(bits.position() / 8);
    return header.rate > 0 && !bits.isBeyondEnd() ? std::optional(header) : std::nullopt;
}

} // namespace

std::optional<Timing> adifDuration(GuardedReader& reader, std::int64_t start) {
    const auto header = parseAdif(reader.headerUpTo(start, GuardedReader::windowBytes));
    const std::int64_t end = findTrailingTags(reader, start);
    const std::int64_t size = header ? end - start - header->bytes : 0;
    if (size <= 0 || size > maxBytes) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> audio(static_cast<std::size_t>(size));
    audio.resize(reader.audio(start + header->bytes, audio));
    const std::int64_t samples = libav().decodedSamples("aac", header->description, audio);
    return samples > 0 ? std::optional(Timing{.seconds = static_cast<double>(samples) / header->rate,
                                              .basis = Basis::counted,
                                              .frames = samples / blockSamples,
                                              .sampling = samplingOf(header->rate, 0)})
                       : std::nullopt;
}

} // namespace velmora
