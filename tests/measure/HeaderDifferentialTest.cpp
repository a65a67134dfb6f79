// The header readers read as little as they can. Here each is held against the plain way: read all there is
// within the bounds, then look. Thousands of damaged files, the same at every run, must get the same answer.

#include "measure/formats/AsfDuration.h"
#include "measure/formats/OggDuration.h"
#include "tests/measure/HeaderBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <vector>

namespace velmora::HeaderDuration {

namespace {

using test::Bytes;
using test::joined;
using test::OggPage;
using test::Read;

using Seconds = std::optional<double>;

Bytes slice(const Bytes& bytes, std::size_t from, std::size_t to) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

std::uint64_t number(const Bytes& bytes, std::size_t at, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        value += std::uint64_t{bytes[at + i]} << (8 * i);
    }
    return value;
}

bool holds(const Bytes& bytes, std::size_t at, const char* text) {
    return std::memcmp(bytes.data() + at, text, std::strlen(text)) == 0;
}

Seconds plainOgg(const Bytes& file) {
    if (file.size() < 65) {
        return {};
    }
    const Bytes head = slice(file, 0, std::min<std::size_t>(file.size(), 65'536));
    const std::size_t n = head[26];
    if (!holds(head, 0, "OggS") || head.size() <= n + 67) {
        return {};
    }
    const Bytes packet = slice(head, 27 + n, std::min(107 + n, head.size()));
    double rate = 0;
    double preSkip = 0;
    if (packet[0] == 1 && holds(packet, 1, "vorbis")) {
        rate = static_cast<double>(number(packet, 12, 4));
    } else if (holds(packet, 0, "OpusHead")) {
        rate = 48'000;
        preSkip = static_cast<double>(number(packet, 10, 2));
    } else if (packet.size() >= 40 && holds(packet, 0, "Speex   ")) {
        rate = static_cast<double>(number(packet, 36, 4));
    } else if (packet.size() >= 31 && packet[0] == 0x7F && holds(packet, 1, "FLAC")) {
        rate = (packet[27] << 12) + (packet[28] << 4) + (packet[29] >> 4);
    }
    if (rate == 0) {
        return {};
    }
    const Bytes tail = slice(file, file.size() - std::min<std::size_t>(file.size(), 262'144), file.size());
    for (std::size_t j = tail.size() - 27 + 1; j-- > 0;) {
        const bool isPage = tail[j] == 'O' && holds(tail, j, "OggS") && tail[j + 4] == 0;
        const std::uint64_t granule = isPage ? number(tail, j + 6, 8) : 0;
        if (granule != 0 && granule != UINT64_MAX) {
            const double samples = static_cast<double>(granule) - preSkip;
            return samples > 0 ? Seconds(samples / rate) : Seconds();
        }
    }
    return {};
}

Seconds plainAsf(const Bytes& file) {
    const Bytes head = slice(file, 0, std::min<std::size_t>(file.size(), 1'048'576));
    if (head.size() < 31 || std::memcmp(head.data(), test::asfHeaderGuid.data(), 16) != 0) {
        return {};
    }
    const std::uint64_t limit = std::min<std::uint64_t>(number(head, 16, 8), head.size());
    if (limit < 54) {
        return {};
    }
    for (std::uint64_t pos = 30; pos + 24 <= limit;) {
        const std::uint64_t size = number(head, pos + 16, 8);
        if (size < 24 || limit - pos < size) {
            return {};
        }
        if (std::memcmp(head.data() + pos, test::asfFilePropertiesGuid.data(), 16) == 0 &&
            head.size() >= pos + 88) {
            const auto play = static_cast<double>(number(head, pos + 64, 8));
            const auto preroll = static_cast<double>(number(head, pos + 80, 8));
            const double seconds = (play - preroll * 10'000) / 10'000'000;
            return seconds > 0 ? Seconds(seconds) : Seconds();
        }
        pos += size;
    }
    return {};
}

/// Files for the readers, each other than the one before, the same in every run.
class Mutator {
public:
    Bytes ogg() {
        const std::array headers = {test::vorbisHeader(44'100), test::opusHeader(312, 44'100),
                                    test::speexHeader(16'000), test::flacHeader(96'000)};
        Bytes file = OggPage{.granulePosition = oneIn(8) ? 1'000 : 0ULL,
                             .segments = static_cast<std::uint8_t>(oneIn(2) ? 1 : upTo(255)),
                             .packets = headers.at(upTo(3))}
                         .bytes();
        file.resize(file.size() + size());
        file.resize(file.size() + upTo(1'000), 'O');
        for (std::size_t pages = upTo(3); pages > 0; --pages) {
            const Bytes page = OggPage{.streamStructureVersion = static_cast<std::uint8_t>(oneIn(6)),
                                       .granulePosition = granule(),
                                       .segments = 0}
                                   .bytes();
            test::overwrite(file, upTo(file.size() - page.size()), page);
        }
        return damaged(std::move(file));
    }

    Bytes asf() {
        Bytes objects;
        for (std::size_t others = upTo(4); others > 0; --others) {
            const std::size_t content = oneIn(8) ? size() : upTo(oneIn(2) ? 200 : 6'000);
            objects = joined({objects, test::AsfObject{.content = Bytes(content)}.bytes()});
        }
        const test::AsfFileProperties properties{.playDuration = upTo(60'000'000), .preroll = upTo(3'000)};
        Bytes file = test::asfHeader(joined({objects, properties.bytes(), Bytes(upTo(200))}));
        file.resize(file.size() + upTo(5'000));
        return damaged(std::move(file));
    }

private:
    std::size_t upTo(std::size_t most) { return m_random() % (most + 1); }

    bool oneIn(std::size_t chances) { return upTo(chances - 1) == 0; }

    /// Mostly small; sometimes near the edge of what is read.
    std::size_t size() {
        constexpr std::array edges = {0UL, 60UL, 8'192UL, 24'576UL, 57'344UL, 262'144UL};
        return oneIn(4) ? upTo(300'000) : edges.at(upTo(edges.size() - 1)) + upTo(100);
    }

    std::uint64_t granule() {
        const std::array some = {0ULL, UINT64_MAX + 0ULL, 312ULL, 44'100ULL, 1ULL << 63};
        return some.at(upTo(some.size() - 1));
    }

    Bytes damaged(Bytes file) {
        for (std::size_t flips = oneIn(2) ? 0 : upTo(3); flips > 0; --flips) {
            const std::size_t reach = oneIn(2) ? std::min<std::size_t>(file.size(), 120) : file.size();
            file[upTo(reach - 1)] ^= static_cast<std::uint8_t>(1U << upTo(7));
        }
        if (oneIn(3)) {
            file.resize(file.size() - upTo(std::min<std::size_t>(file.size(), 300)));
        }
        return file;
    }

    std::mt19937_64 m_random{20'240'229};
};

} // namespace

TEST(OggDifferential, SmallReadsAnswerAsThePlainWayDoes) {
    Mutator mutator;
    int answers = 0;
    constexpr int files = 3'000;
    for (int i = 0; i < files; ++i) {
        const Bytes file = mutator.ogg();
        std::vector<Read> reads;
        const Seconds seconds = oggSeconds(test::counted(file, reads));
        ASSERT_EQ(seconds, plainOgg(file)) << "file " << i << " of " << file.size() << " bytes";
        ASSERT_LE(test::bytesIn(reads), 362 + 262'144) << "file " << i;
        answers += seconds ? 1 : 0;
    }
    EXPECT_GT(answers, files / 4);
    EXPECT_LT(answers, files * 3 / 4);
}

TEST(AsfDifferential, SmallReadsAnswerAsThePlainWayDoes) {
    Mutator mutator;
    int answers = 0;
    constexpr int files = 3'000;
    for (int i = 0; i < files; ++i) {
        const Bytes file = mutator.asf();
        std::vector<Read> reads;
        const Seconds seconds = asfSeconds(test::counted(file, reads));
        ASSERT_EQ(seconds, plainAsf(file)) << "file " << i << " of " << file.size() << " bytes";
        ASSERT_LE(test::bytesIn(reads), 1'048'576) << "file " << i;
        ASSERT_TRUE(test::areDisjoint(reads)) << "file " << i;
        answers += seconds ? 1 : 0;
    }
    EXPECT_GT(answers, files / 4);
    EXPECT_LT(answers, files * 3 / 4);
}

} // namespace velmora::HeaderDuration
