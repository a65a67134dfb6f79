#include "measure/formats/OggDuration.h"

#include "tests/measure/HeaderBytes.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace velmora::HeaderDuration {

namespace {

using test::Bytes;
using test::joined;
using test::noGranule;
using test::OggPage;

using Seconds = std::optional<double>;
using Codec = std::optional<OggCodec>;

Seconds secondsOfOgg(const Bytes& file) {
    return oggSeconds(sourceOf(std::span(file)));
}

/// A file of the codec whose identification header is `identification`, ending at `granule`.
Bytes oggFile(const Bytes& identification, std::uint64_t granule) {
    return joined({OggPage{.packets = identification}.bytes(),
                   OggPage{.granulePosition = granule, .packets = Bytes(100)}.bytes()});
}

Bytes page(std::uint64_t granule) {
    return OggPage{.granulePosition = granule, .packets = Bytes(100)}.bytes();
}

/// A file of `size` bytes that is one page with a granule position of one second.
Bytes onePage(std::uint8_t segments, std::size_t size) {
    Bytes file =
        OggPage{.granulePosition = 44'100, .segments = segments, .packets = test::vorbisHeader(44'100)}
            .bytes();
    file.resize(size);
    return file;
}

} // namespace

TEST(OggDuration, DividesTheLastGranuleByTheRateOfEachCodec) {
    EXPECT_EQ(secondsOfOgg(oggFile(test::vorbisHeader(44'100), 66'150)), 1.5);
    EXPECT_EQ(secondsOfOgg(oggFile(test::opusHeader(0, 48'000), 24'000)), 0.5);
    EXPECT_EQ(secondsOfOgg(oggFile(test::speexHeader(16'000), 4'000)), 0.25);
    EXPECT_EQ(secondsOfOgg(oggFile(test::flacHeader(44'100), 441'000)), 10.0);
}

TEST(OggDuration, CountsOpusAt48kHzLessThePreSkipWhateverTheInputRate) {
    EXPECT_EQ(secondsOfOgg(oggFile(test::opusHeader(312, 48'000), 48'312)), 1.0);
    EXPECT_EQ(secondsOfOgg(oggFile(test::opusHeader(312, 44'100), 48'312)), 1.0);
    EXPECT_EQ(secondsOfOgg(oggFile(test::opusHeader(0xFFFF, 0), 48'000 + 0xFFFF)), 1.0);
}

TEST(OggDuration, IsAbsentWithoutSamplesAfterThePreSkip) {
    EXPECT_EQ(secondsOfOgg(oggFile(test::opusHeader(312, 48'000), 311)), Seconds());
    EXPECT_EQ(secondsOfOgg(oggFile(test::opusHeader(312, 48'000), 312)), Seconds());
    EXPECT_EQ(secondsOfOgg(oggFile(test::opusHeader(312, 48'000), 313)), 1.0 / 48'000);
}

TEST(OggDuration, IsAbsentForARateOfZero) {
    EXPECT_EQ(secondsOfOgg(oggFile(test::vorbisHeader(0), 44'100)), Seconds());
    EXPECT_EQ(secondsOfOgg(oggFile(test::speexHeader(0), 44'100)), Seconds());
    EXPECT_EQ(secondsOfOgg(oggFile(test::flacHeader(0), 44'100)), Seconds());
}

TEST(OggDuration, TakesAbsurdNumbersAsTheyStand) {
    EXPECT_EQ(secondsOfOgg(oggFile(test::vorbisHeader(1), noGranule - 1)), 0x1p64);
    EXPECT_EQ(secondsOfOgg(oggFile(test::vorbisHeader(0xFFFF'FFFF), 1)), 1.0 / 4'294'967'295.0);
    EXPECT_EQ(secondsOfOgg(oggFile(test::flacHeader(0xF'FFFF), 0xF'FFFF)), 1.0);
}

TEST(OggDuration, PassesOverPagesOnWhichNothingEnds) {
    struct Row {
        std::string name;
        Bytes lastPages;
    };

    Bytes cutShort = page(88'200);
    cutShort.resize(26);
    const OggPage otherVersion{.streamStructureVersion = 1, .granulePosition = 88'200, .packets = Bytes(100)};
    const std::array rows = {
        Row{"granule all ones", page(noGranule)},
        Row{"granule 0", page(0)},
        Row{"another structure version", otherVersion.bytes()},
        Row{"several of them", joined({page(0), page(noGranule), otherVersion.bytes(), page(noGranule)})},
        Row{"a header cut short", cutShort},
        Row{"no page at all", Bytes(5'000, 'O')},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(secondsOfOgg(test::vorbisFile(joined({page(44'100), row.lastPages}))), 1.0) << row.name;
        EXPECT_EQ(secondsOfOgg(test::vorbisFile(row.lastPages)), Seconds()) << row.name;
    }
}

TEST(OggDuration, TakesTheLastPageOfWhicheverStream) {
    const OggPage otherStream{.granulePosition = 88'200, .bitstreamSerialNumber = 2, .packets = Bytes(100)};
    EXPECT_EQ(secondsOfOgg(test::vorbisFile(joined({page(44'100), otherStream.bytes()}))), 2.0);
}

TEST(OggDuration, TakesAPageHeaderWithinAPacketForOne) {
    const OggPage outer{.granulePosition = 44'100, .packets = page(88'200)};
    EXPECT_EQ(secondsOfOgg(test::vorbisFile(outer.bytes())), 2.0);
}

TEST(OggDuration, TakesAHeaderThatEndsWithTheFile) {
    const OggPage empty{.granulePosition = 44'100, .segments = 0};
    EXPECT_EQ(secondsOfOgg(test::vorbisFile(joined({Bytes(60), empty.bytes()}))), 1.0);
}

TEST(OggDuration, WantsMoreThan40BytesAfterTheFirstPagesHeader) {
    for (const std::uint8_t segments : std::to_array<std::uint8_t>({0, 1, 2, 100, 254, 255})) {
        const std::size_t tooSmall = segments + 67;
        EXPECT_EQ(secondsOfOgg(onePage(segments, tooSmall)), Seconds()) << int{segments};
        EXPECT_EQ(secondsOfOgg(onePage(segments, tooSmall + 1)), 1.0) << int{segments};
    }
}

TEST(OggDuration, LooksAtNothingOfTheFirstPageButThePatternAndTheSegmentCount) {
    const Bytes good = oggFile(test::vorbisHeader(44'100), 44'100);
    for (std::size_t at = 0; at < 28; ++at) {
        Bytes flipped = good;
        flipped[at] ^= 0xFF;
        const bool matters = at < 4 || at == 26;
        EXPECT_EQ(secondsOfOgg(flipped), matters ? Seconds() : 1.0) << at;
    }
}

TEST(OggDuration, LooksAtNothingOfTheLastPageButPatternVersionAndGranule) {
    const Bytes good = oggFile(test::vorbisHeader(44'100), 44'100);
    const std::size_t last = good.size() - 128;
    ASSERT_EQ(good[last], 'O');
    for (std::size_t at = 0; at < 28; ++at) {
        Bytes flipped = good;
        flipped[last + at] ^= 0x80;
        const bool isGranule = at >= 6 && at < 14;
        if (isGranule) {
            EXPECT_TRUE(secondsOfOgg(flipped) && secondsOfOgg(flipped) != 1.0) << at;
        } else {
            EXPECT_EQ(secondsOfOgg(flipped), at < 5 ? Seconds() : 1.0) << at;
        }
    }
}

TEST(OggDuration, IsAbsentForEveryPrefixWithoutThePageThatCounts) {
    const Bytes good = oggFile(test::vorbisHeader(44'100), 44'100);
    const std::size_t wholeHeader = good.size() - 128 + 27;
    for (std::size_t size = 0; size <= good.size(); ++size) {
        const Bytes prefix(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(secondsOfOgg(prefix), size < wholeHeader ? Seconds() : 1.0) << size;
    }
}

TEST(OggCodecs, AreKnownFromTheLengthThatTheirFieldsNeed) {
    struct Row {
        std::string name;
        Bytes header;
        std::size_t shortest;
        OggCodec codec;
    };

    const std::array rows = {
        Row{"Vorbis", test::vorbisHeader(44'100), 16, {44'100, 0, 2}},
        Row{"Opus", test::opusHeader(312, 44'100), 19, {48'000, 312, 2}},
        Row{"Speex", test::speexHeader(32'000), 40, {32'000, 0, 0}},
        Row{"FLAC", test::flacHeader(96'000), 31, {96'000, 0, 8}},
    };
    for (const Row& row : rows) {
        for (std::size_t size = 0; size <= row.header.size(); ++size) {
            EXPECT_EQ(identifyOggCodec(std::span(row.header).first(size)),
                      size < row.shortest ? Codec() : row.codec)
                << row.name << " of " << size << " bytes";
        }
    }
}

TEST(OggCodecs, AreKnownByEveryByteOfTheirSignature) {
    struct Row {
        std::string name;
        Bytes header;
        std::size_t signature;
    };

    const std::array rows = {
        Row{"Vorbis", test::vorbisHeader(44'100), 7},
        Row{"Opus", test::opusHeader(312, 44'100), 8},
        Row{"Speex", test::speexHeader(32'000), 8},
        Row{"FLAC", test::flacHeader(96'000), 5},
    };
    for (const Row& row : rows) {
        for (std::size_t at = 0; at < row.header.size(); ++at) {
            Bytes flipped = row.header;
            flipped[at] ^= 0xFF;
            EXPECT_EQ(identifyOggCodec(flipped).has_value(), at >= row.signature) << row.name << ' ' << at;
        }
    }
}

TEST(OggCodecs, OfOtherKindsAreUnknown) {
    EXPECT_EQ(identifyOggCodec({}), Codec());
    EXPECT_EQ(identifyOggCodec(Bytes(80)), Codec());
    const std::string theora = "\x80theora and more than enough bytes after it";
    EXPECT_EQ(identifyOggCodec(Bytes(theora.begin(), theora.end())), Codec());
}

} // namespace velmora::HeaderDuration
