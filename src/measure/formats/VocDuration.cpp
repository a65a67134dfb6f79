#include "measure/formats/VocDuration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Chunks.h"

#include <iterator>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// The blocks are walked to the end. Each block of sound states its rate and codec, or takes those of the
// block before; silence states its length. The seconds of all blocks are added up.
//
// File (Creative Labs, "Sound Blaster Series Hardware Programming Guide", appendix "Creative Voice File"),
// the lowest byte of a number first:
//
//   offset  size  field
//        0    20  "Creative Voice File", 0x1A
//       20     2  where the blocks begin
//       22     4  version, check
//       26        blocks: type (1), size of the content (3), content; the block that ends the file has no
//       size
//
//   type  name             content
//      0  terminator       none
//      1  sound data       0 time constant (1), 1 codec (1), 2 samples
//      2  continuation     samples
//      3  silence          0 samples less one (2), 2 time constant (1)
//      8  extended         0 time constant (2), 2 codec (1), 3 channels less one (1): of the sound data after
//      it 9  new sound data   0 samples a second (4), 4 bits (1), 5 channels (1), 6 codec (2), 8 reserved
//      (4),
//                          12 samples
//
// A time constant is 256 - 1,000,000 / rate; one of two bytes 65,536 - 256,000,000 / (channels * rate).

constexpr std::size_t blocksAt = 20;
constexpr ChunkLayout vocBlocks{.nameBytes = 1, .sizeAt = 1, .sizeBytes = 3};

enum class Block : std::uint8_t {
    terminator = 0,
    sound = 1,
    continuation = 2,
    silence = 3,
    extended = 8,
    newSound = 9,
};

constexpr std::int64_t soundHeadBytes = 2;
constexpr std::size_t silenceBytes = 3;
constexpr std::size_t extendedBytes = 4;
constexpr std::int64_t newSoundHeadBytes = 12; // the longest of the heads

/// Bits of a sample in each codec; 0 if unknown.
double bitsOf(int codec) {
    switch (codec) {
    case 0: // linear
    case 6: // A-law
    case 7: // mu-law
        return 8;
    case 1: // ADPCM
    case 0x200:
        return 4;
    case 2: // three samples in a byte
        return 8.0 / 3;
    case 3:
        return 2;
    case 4: // linear
        return 16;
    default:
        return 0;
    }
}

double rateOf(int timeConstant) {
    return 1'000'000.0 / (256 - timeConstant);
}

double extendedRateOf(int timeConstant, int channels) {
    return 256'000'000.0 / (65'536 - timeConstant) / channels;
}

/// Knows how long a byte of sound lasts, as the blocks so far have told.
class VocClock {
public:
    /// Seconds of a block whose content begins with `head` and is `size` bytes long.
    double advance(Block block, Bytes head, std::int64_t size) {
        switch (block) {
        case Block::sound:
            if (std::ssize(head) < soundHeadBytes) {
                return 0;
            }
            if (!m_hasExtended) {
                setSound(rateOf(head[0]), head[1], 1);
            }
            m_hasExtended = false;
            return static_cast<double>(size - soundHeadBytes) * m_byteSeconds;
        case Block::newSound:
            if (std::ssize(head) < newSoundHeadBytes) {
                return 0;
            }
            setSound(le32(head, 0), le16(head, 6), head[5]);
            return static_cast<double>(size - newSoundHeadBytes) * m_byteSeconds;
        case Block::continuation:
            return static_cast<double>(size) * m_byteSeconds;
        case Block::silence:
            return head.size() < silenceBytes ? 0 : (le16(head, 0) + 1) / rateOf(head[2]);
        case Block::extended:
            if (head.size() >= extendedBytes) {
                const int channels = head[3] + 1;
                setSound(extendedRateOf(le16(head, 0), channels), head[2], channels);
                m_hasExtended = true;
            }
            return 0;
        case Block::terminator:
            break;
        }
        return 0;
    }

    /// Of the first block of sound.
    const Sampling& sampling() const { return m_sampling; }

private:
    void setSound(double rate, int codec, int channels) {
        const bool isKnown = rate > 0 && channels > 0;
        if (m_sampling.rate == 0) {
            m_sampling = samplingOf(rate, channels);
        }
        m_byteSeconds = isKnown && bitsOf(codec) > 0 ? 8 / bitsOf(codec) / channels / rate : 0;
    }

    Sampling m_sampling;
    double m_byteSeconds = 0;
    bool m_hasExtended = false;
};

} // namespace

std::optional<Timing> vocDuration(GuardedReader& reader, std::int64_t start) {
    const Bytes file = reader.header(start, blocksAt + 2);
    if (file.empty()) {
        return std::nullopt;
    }
    VocClock clock;
    Timing timing{.basis = Basis::sized};
    std::int64_t at = start + le16(file, blocksAt);
    while (const auto block = chunkAt(reader, vocBlocks, at)) {
        const auto type = static_cast<Block>(block->name.front());
        if (type == Block::terminator) {
            break;
        }
        timing.seconds += clock.advance(type, contentOf(reader, *block, newSoundHeadBytes), block->size);
        timing.doubt = block->isCutOff() ? Doubt::beyondEnd : timing.doubt;
        ++timing.frames;
        at = block->next;
    }
    return sampled(timing, clock.sampling());
}

} // namespace velmora
