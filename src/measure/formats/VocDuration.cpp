#include "measure/formats/VocDuration.h"

#include "measure/bytes/ByteOrder.h"

#include <algorithm>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// The file: 0 magic (20 bytes), 20 where the blocks begin (2 bytes). A block: type, size of what follows (3
// bytes).
constexpr std::size_t blocksAt = 20;
constexpr std::int64_t blockHeaderBytes = 4;

enum class Block : std::uint8_t {
    end = 0,
    sound = 1,      ///< 0 time constant, 1 codec
    more = 2,       ///< more of the sound before
    silence = 3,    ///< 0 samples less one (2 bytes), 2 time constant
    parameters = 8, ///< of the sound that follows: 0 time constant (2 bytes), 2 codec, 3 channels less one
    newSound = 9,   ///< 0 rate (4 bytes), 4 bits, 5 channels, 6 codec (2 bytes), 8 reserved
};

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
    case 2:
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

/// How long a byte of sound lasts, as the blocks so far have told.
class VocClock {
public:
    /// Seconds of a block whose content begins with `head` and is `size` bytes long.
    double advance(Block block, Bytes head, std::int64_t size) {
        switch (block) {
        case Block::sound:
            if (head.size() < 2) {
                return 0;
            }
            if (!m_hasParameters) {
                setSound(rateOf(head[0]), head[1], 1);
            }
            m_hasParameters = false;
            return static_cast<double>(size - 2) * m_byteSeconds;
        case Block::newSound:
            if (head.size() < 12) {
                return 0;
            }
            setSound(le32(head, 0), le16(head, 6), head[5]);
            return static_cast<double>(size - 12) * m_byteSeconds;
        case Block::more:
            return static_cast<double>(size) * m_byteSeconds;
        case Block::silence:
            return head.size() < 3 ? 0 : (le16(head, 0) + 1) / rateOf(head[2]);
        case Block::parameters:
            if (head.size() >= 4) {
                const int channels = head[3] + 1;
                setSound(256'000'000.0 / (65'536 - le16(head, 0)) / channels, head[2], channels);
                m_hasParameters = true;
            }
            return 0;
        case Block::end:
            break;
        }
        return 0;
    }

private:
    void setSound(double rate, int codec, int channels) {
        const bool isKnown = rate > 0 && channels > 0;
        m_byteSeconds = isKnown && bitsOf(codec) > 0 ? 8 / bitsOf(codec) / channels / rate : 0;
    }

    double m_byteSeconds = 0;
    bool m_hasParameters = false;
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
    for (;;) {
        const Bytes block = reader.header(at, 1);
        if (block.empty() || block[0] == static_cast<std::uint8_t>(Block::end)) {
            break;
        }
        const Bytes header = reader.header(at, blockHeaderBytes);
        if (header.empty()) {
            break;
        }
        const auto type = static_cast<Block>(header[0]);
        const std::int64_t stated = le32(header, 0) >> 8;
        at += blockHeaderBytes;
        const std::int64_t size = std::min(stated, reader.size() - at);
        timing.seconds += clock.advance(
            type, reader.header(at, static_cast<std::size_t>(std::min<std::int64_t>(size, 12))), size);
        timing.doubt = stated > size ? Doubt::beyondEnd : timing.doubt;
        ++timing.frames;
        at += stated;
    }
    return timing;
}

} // namespace velmora
