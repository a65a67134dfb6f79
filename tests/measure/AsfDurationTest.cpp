#include "measure/formats/AsfDuration.h"

#include "tests/measure/HeaderBytes.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace velmora::HeaderDuration {

namespace {

using test::AsfFileProperties;
using test::asfHeader;
using test::AsfObject;
using test::Bytes;
using test::joined;
using test::Read;

using Seconds = std::optional<double>;

constexpr std::size_t mebibyte = 1'048'576;

Seconds secondsOfAsf(const Bytes& file) {
    return asfSeconds(sourceOf(std::span(file)));
}

Seconds secondsStating(const AsfFileProperties& properties) {
    return secondsOfAsf(asfHeader(properties.bytes()));
}

Bytes object(std::size_t contentSize) {
    return AsfObject{.content = Bytes(contentSize)}.bytes();
}

/// A file whose first object, of `size` bytes by its own statement, stands before the File Properties.
Bytes afterAnObjectStating(std::uint64_t size) {
    return asfHeader(
        joined({AsfObject{.content = Bytes(76), .objectSize = size}.bytes(), AsfFileProperties{}.bytes()}));
}

} // namespace

TEST(AsfDuration, IsThePlayDurationLessThePreroll) {
    EXPECT_EQ(secondsStating({.playDuration = 30'000'000, .preroll = 1'000}), 2.0);
    EXPECT_EQ(secondsStating({.playDuration = 30'000'000, .preroll = 0}), 3.0);
    EXPECT_EQ(secondsStating({.playDuration = 1, .preroll = 0}), 1e-7);
}

TEST(AsfDuration, IsAbsentUnlessPositive) {
    EXPECT_EQ(secondsStating({.playDuration = 0, .preroll = 0}), Seconds());
    EXPECT_EQ(secondsStating({.playDuration = 0, .preroll = 1'000}), Seconds());
    EXPECT_EQ(secondsStating({.playDuration = 10'000'000, .preroll = 1'000}), Seconds());
    EXPECT_EQ(secondsStating({.playDuration = 10'000'000, .preroll = 1'001}), Seconds());
}

TEST(AsfDuration, ReadsAbsurdNumbersAsUnsigned) {
    EXPECT_EQ(secondsStating({.playDuration = UINT64_MAX, .preroll = 0}), 0x1p64 / 1e7);
    EXPECT_EQ(secondsStating({.playDuration = UINT64_MAX, .preroll = UINT64_MAX}), Seconds());
    EXPECT_EQ(secondsStating({.playDuration = 30'000'000, .preroll = 1ULL << 63}), Seconds());
}

TEST(AsfDuration, AsksNoFlag) {
    EXPECT_EQ(secondsStating({.flags = 0xFFFF'FFFF}), 2.0);
}

TEST(AsfDuration, IsFoundAfterOtherObjects) {
    const AsfFileProperties longer{.playDuration = 50'000'000};
    EXPECT_EQ(secondsOfAsf(asfHeader(joined({object(0), object(1), AsfFileProperties{}.bytes(), object(7)}))),
              2.0);
    EXPECT_EQ(secondsOfAsf(asfHeader(joined({AsfFileProperties{}.bytes(), longer.bytes()}))), 2.0);
    EXPECT_EQ(secondsOfAsf(asfHeader(joined({object(100), object(3)}))), Seconds());
}

TEST(AsfDuration, IsTheFirstFilePropertiesObjectsEvenIfThatSaysNothing) {
    const AsfFileProperties live{.playDuration = 0};
    EXPECT_EQ(secondsOfAsf(asfHeader(joined({live.bytes(), AsfFileProperties{}.bytes()}))), Seconds());
}

TEST(AsfDuration, IsSoughtWithinTheSizeThatTheHeaderStates) {
    // The File Properties Object is the first, and says that it ends with its own prefix.
    const Bytes minimal = AsfFileProperties{.objectSize = 24}.bytes();
    EXPECT_EQ(secondsOfAsf(asfHeader(minimal, 0)), Seconds());
    EXPECT_EQ(secondsOfAsf(asfHeader(minimal, 53)), Seconds());
    EXPECT_EQ(secondsOfAsf(asfHeader(minimal, 54)), 2.0);

    const Bytes second = joined({object(0), AsfFileProperties{}.bytes()});
    const std::size_t trueSize = 30 + second.size();
    EXPECT_EQ(secondsOfAsf(asfHeader(second, trueSize - 1)), Seconds());
    EXPECT_EQ(secondsOfAsf(asfHeader(second, trueSize)), 2.0);
    EXPECT_EQ(secondsOfAsf(asfHeader(second, UINT64_MAX)), 2.0);
}

TEST(AsfDuration, IsAbsentAfterAnObjectOfImpossibleSize) {
    EXPECT_EQ(secondsOfAsf(afterAnObjectStating(100)), 2.0);
    for (const std::uint64_t size : {0ULL, 1ULL, 23ULL, 205ULL, 1ULL << 32, 1ULL << 63, ~0ULL}) {
        EXPECT_EQ(secondsOfAsf(afterAnObjectStating(size)), Seconds()) << size;
    }
    EXPECT_EQ(secondsOfAsf(afterAnObjectStating(204)), Seconds()) << "which reaches to the header's end";
    EXPECT_EQ(secondsOfAsf(afterAnObjectStating(24)), Seconds()) << "then come zeros: an object of size 0";
}

TEST(AsfDuration, IsAbsentAfterAnObjectTooSmallForItsPrefixWhateverFollows) {
    // Who steps over `size` bytes finds a second object there, which leads on to the File Properties Object.
    const auto file = [](std::uint8_t size) {
        Bytes first = AsfObject{.content = Bytes(76), .objectSize = size}.bytes();
        first[size + 16U] = static_cast<std::uint8_t>(first.size() - size);
        return asfHeader(joined({first, AsfFileProperties{}.bytes()}));
    };
    for (std::uint8_t size = 8; size < 24; ++size) {
        EXPECT_EQ(secondsOfAsf(file(size)), Seconds()) << int{size};
    }
    EXPECT_EQ(secondsOfAsf(file(24)), 2.0);
    EXPECT_EQ(secondsOfAsf(file(25)), 2.0);
}

TEST(AsfDuration, NeedsTheFieldsInTheFileButNotInTheObject) {
    const Bytes file = asfHeader(AsfFileProperties{.objectSize = 24}.bytes());
    for (std::size_t size = 0; size <= file.size(); ++size) {
        const Bytes prefix(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(secondsOfAsf(prefix), size < 30 + 88 ? Seconds() : 2.0) << size;
    }
}

TEST(AsfDuration, IsAbsentForEveryPrefixThatCutsTheObject) {
    const Bytes file = asfHeader(joined({object(10), AsfFileProperties{}.bytes()}));
    for (std::size_t size = 0; size <= file.size(); ++size) {
        const Bytes prefix(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(secondsOfAsf(prefix), size < file.size() ? Seconds() : 2.0) << size;
    }
}

TEST(AsfDuration, LooksAtNothingButGuidsSizesAndTheTwoFields) {
    const Bytes good = asfHeader(AsfFileProperties{}.bytes());
    for (std::size_t at = 0; at < good.size(); ++at) {
        Bytes flipped = good;
        flipped[at] ^= 0xFF;
        const std::size_t inObject = at - 30;
        const bool isGuidOrSize = at < 16 || (at >= 30 && inObject < 24);
        const bool isHeaderSize = at == 16; // 134 becomes 121; a larger size is cut to the file's
        const bool isField = at >= 30 && (inObject - 64 < 8 || inObject - 80 < 8);
        if (isField) {
            EXPECT_NE(secondsOfAsf(flipped), 2.0) << at;
        } else {
            EXPECT_EQ(secondsOfAsf(flipped), isGuidOrSize || isHeaderSize ? Seconds() : 2.0) << at;
        }
    }
}

TEST(AsfDuration, IsSoughtInTheFirstMebibyteOnly) {
    struct Row {
        std::string name;
        std::size_t start; // of the File Properties Object
        Seconds seconds;
    };

    const std::array rows = {
        Row{"well within", mebibyte - 500, 2.0},
        Row{"its fields end with the mebibyte", mebibyte - 88, 2.0},
        Row{"its fields are cut by a byte", mebibyte - 87, {}},
        Row{"begins with the next mebibyte", mebibyte, {}},
        Row{"far beyond", mebibyte + 500, {}},
    };
    for (const Row& row : rows) {
        const Bytes before = object(row.start - 30 - 24);
        const Bytes properties = AsfFileProperties{.objectSize = 24}.bytes();
        EXPECT_EQ(secondsOfAsf(asfHeader(joined({before, properties}))), row.seconds) << row.name;
    }
}

TEST(AsfReads, NothingOfAFileBelow31Bytes) {
    Bytes file = asfHeader({});
    std::vector<Read> reads;
    EXPECT_EQ(asfSeconds(test::counted(file, reads)), Seconds());
    EXPECT_EQ(asfSeconds(test::counted({}, reads)), Seconds());
    EXPECT_TRUE(reads.empty());
    file.resize(31);
    EXPECT_EQ(asfSeconds(test::counted(file, reads)), Seconds());
    EXPECT_EQ(reads, std::vector({Read{0, 31}}));
}

TEST(AsfReads, OneSmallPieceOfACommonFile) {
    const Bytes file =
        joined({asfHeader(joined({object(1'000), AsfFileProperties{}.bytes()})), Bytes(3'000'000)});
    std::vector<Read> reads;
    EXPECT_EQ(asfSeconds(test::counted(file, reads)), 2.0);
    EXPECT_EQ(reads, std::vector({Read{0, 4'096}}));
}

TEST(AsfReads, NothingOfWhatLiesInALongObject) {
    const Bytes file =
        asfHeader(joined({object(300'000), object(500'000), AsfFileProperties{}.bytes(), object(9'000)}));
    std::vector<Read> reads;
    EXPECT_EQ(asfSeconds(test::counted(file, reads)), 2.0);
    EXPECT_EQ(reads, std::vector({Read{0, 4'096}, Read{300'054, 4'096}, Read{800'078, 4'096}}));
}

TEST(AsfReads, NoByteTwiceAndNoneBeyondTheFirstMebibyte) {
    for (const std::size_t contentSize : {0UL, 1UL, 17UL, 3'000UL, 4'060UL, 4'072UL, 5'000UL}) {
        Bytes objects;
        while (objects.size() < mebibyte) {
            const Bytes next = object(contentSize);
            objects.insert(objects.end(), next.begin(), next.end());
        }
        const Bytes file = asfHeader(joined({objects, AsfFileProperties{}.bytes()}));
        std::vector<Read> reads;
        EXPECT_EQ(asfSeconds(test::counted(file, reads)), Seconds()) << contentSize;
        EXPECT_TRUE(test::areDisjoint(reads)) << contentSize;
        EXPECT_LE(reads.back().offset + reads.back().bytes, static_cast<std::int64_t>(mebibyte))
            << contentSize;
        EXPECT_LE(reads.size(), 260U) << contentSize;
    }
}

TEST(AsfReads, NothingWhenAReadFailsOrTheFileShrank) {
    const Bytes file = asfHeader(joined({object(10'000), AsfFileProperties{}.bytes()}));
    EXPECT_EQ(asfSeconds(test::failingAfter(0, file)), Seconds());
    EXPECT_EQ(asfSeconds(test::failingAfter(1, file)), Seconds());
    EXPECT_EQ(asfSeconds(test::failingAfter(2, file)), 2.0);
    ByteSource source = sourceOf(std::span(file).first(5'000));
    source.size = static_cast<std::int64_t>(file.size());
    EXPECT_EQ(asfSeconds(source), Seconds());
}

} // namespace velmora::HeaderDuration
