// What the Ogg reader reads: as little as settles the answer, never more than its bounds.

#include "measure/formats/OggDuration.h"
#include "tests/measure/HeaderBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace velmora::HeaderDuration {

namespace {

using test::Bytes;
using test::joined;
using test::OggPage;
using test::Read;

using Seconds = std::optional<double>;

constexpr std::size_t maxTail = 262'144;

Bytes emptyPage(std::uint64_t granule) {
    return OggPage{.granulePosition = granule, .segments = 0}.bytes();
}

struct Outcome {
    Seconds seconds;
    std::vector<Read> reads;

    std::int64_t bytes() const {
        std::int64_t sum = 0;
        for (const Read& read : reads) {
            sum += read.bytes;
        }
        return sum;
    }
};

Outcome outcomeOf(const Bytes& file) {
    Outcome outcome;
    outcome.seconds = oggSeconds(test::counted(file, outcome.reads));
    return outcome;
}

} // namespace

TEST(OggReads, NothingOfAFileBelow65Bytes) {
    Bytes file =
        OggPage{.granulePosition = 44'100, .segments = 0, .packets = test::vorbisHeader(44'100)}.bytes();
    file.resize(64);
    EXPECT_TRUE(outcomeOf(file).reads.empty());
    EXPECT_TRUE(outcomeOf({}).reads.empty());
    file.resize(65);
    EXPECT_EQ(outcomeOf(file).reads, std::vector({Read{0, 65}}));
}

TEST(OggReads, OnlyTheHeadOfWhatIsNotOgg) {
    EXPECT_EQ(outcomeOf(Bytes(300'000)).reads, std::vector({Read{0, 362}}));
    EXPECT_EQ(outcomeOf(OggPage{.packets = Bytes(300'000)}.bytes()).reads, std::vector({Read{0, 362}}));
}

TEST(OggReads, TheHeadAndOneSmallPieceOfACommonFile) {
    const Bytes file = test::vorbisFile(joined({Bytes(3'000'000), emptyPage(44'100), Bytes(4'500)}));
    const Outcome outcome = outcomeOf(file);
    EXPECT_EQ(outcome.seconds, 1.0);
    EXPECT_EQ(outcome.reads.size(), 2U);
    EXPECT_LT(outcome.bytes(), 9'000);
}

TEST(OggReads, LittleMoreThanTwiceTheWayToThePageThatCounts) {
    for (const std::size_t distance : {10'000UL, 20'000UL, 65'000UL, 130'000UL, 250'000UL}) {
        const Outcome outcome =
            outcomeOf(test::vorbisFile(joined({Bytes(1'000'000), emptyPage(44'100), Bytes(distance)})));
        EXPECT_EQ(outcome.seconds, 1.0) << distance;
        EXPECT_LT(outcome.bytes(), 2 * static_cast<std::int64_t>(distance) + 9'000) << distance;
        EXPECT_TRUE(test::areDisjoint(outcome.reads)) << distance;
    }
}

TEST(OggReads, NoByteTwiceAndNoneBeyondTheTailOfAFileWithoutAnEnd) {
    for (const std::size_t size : {400UL, 8'000UL, 9'000UL, 100'000UL, maxTail, 3 * maxTail}) {
        const Bytes file = test::vorbisFile(Bytes(size));
        const Outcome outcome = outcomeOf(file);
        EXPECT_EQ(outcome.seconds, Seconds()) << size;
        const auto tailStart = static_cast<std::int64_t>(file.size() - std::min(file.size(), maxTail));
        const std::vector<Read> tail(outcome.reads.begin() + 1, outcome.reads.end());
        for (const Read& read : tail) {
            EXPECT_GE(read.offset, tailStart) << size;
        }
        EXPECT_TRUE(test::areDisjoint(tail)) << size;
        EXPECT_LE(tail.size(), 6U) << size;
    }
}

TEST(OggReads, ThePageThatBeginsTheTailButNoneBefore) {
    const Bytes lone = emptyPage(44'100);
    const Bytes rest(maxTail - lone.size());
    EXPECT_EQ(outcomeOf(test::vorbisFile(joined({Bytes(70'000), lone, rest}))).seconds, 1.0);
    EXPECT_EQ(outcomeOf(test::vorbisFile(joined({Bytes(70'000), lone, rest, Bytes(1)}))).seconds, Seconds());
}

TEST(OggReads, EveryPageHeaderWhereverItLies) {
    // More than two windows: a header straddles the border between two of them in every possible way.
    constexpr std::size_t distances = 26'000;
    const Bytes lone = emptyPage(44'100);
    const Bytes start = test::vorbisFile(Bytes(100));
    Bytes file = joined({start, Bytes(distances)});
    for (std::size_t at = start.size(); at + lone.size() <= file.size(); ++at) {
        test::overwrite(file, at, lone);
        EXPECT_EQ(outcomeOf(file).seconds, 1.0) << at;
        test::overwrite(file, at, Bytes(lone.size()));
    }
}

TEST(OggReads, NothingWhenAReadFails) {
    const Bytes file = test::vorbisFile(joined({Bytes(70'000), emptyPage(44'100), Bytes(10'000)}));
    EXPECT_EQ(oggSeconds(test::failingAfter(0, file)), Seconds());
    EXPECT_EQ(oggSeconds(test::failingAfter(1, file)), Seconds());
    EXPECT_EQ(oggSeconds(test::failingAfter(2, file)), Seconds());
    EXPECT_EQ(oggSeconds(test::failingAfter(3, file)), 1.0);
}

TEST(OggReads, NothingOfAFileThatShrank) {
    const Bytes file = test::vorbisFile(joined({Bytes(20'000), emptyPage(44'100)}));
    ByteSource source = sourceOf(std::span(file));
    source.size += 30'000;
    EXPECT_EQ(oggSeconds(source), Seconds());
    const Bytes none;
    source = sourceOf(std::span(none));
    source.size = 1'000;
    EXPECT_EQ(oggSeconds(source), Seconds());
}

} // namespace velmora::HeaderDuration
