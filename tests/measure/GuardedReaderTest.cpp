// What may be read, and for how long.

#include "measure/bytes/GuardedReader.h"

#include "tests/measure/HeaderBytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <stop_token>
#include <vector>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto window = static_cast<std::int64_t>(GuardedReader::windowBytes);

class GuardedReaderTest : public testing::Test {
protected:
    static Bytes countingBytes() {
        Bytes bytes(3 * GuardedReader::windowBytes + 100);
        std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
        return bytes;
    }

    const Bytes content = countingBytes();
    const std::int64_t size = std::ssize(content);
    std::vector<Read> reads;
    std::stop_source stop;
    GuardedReader reader{counted(content, reads), stop.get_token()};
};

TEST_F(GuardedReaderTest, GivesWholeHeadersOrNone) {
    EXPECT_THAT(reader.header(257, 3), ElementsAre(1, 2, 3));
    EXPECT_THAT(reader.header(0, GuardedReader::windowBytes), SizeIs(GuardedReader::windowBytes));
    EXPECT_THAT(reader.header(0, GuardedReader::windowBytes + 1), IsEmpty());
    EXPECT_THAT(reader.header(-1, 1), IsEmpty());
    EXPECT_THAT(reader.header(size - 1, 1), ElementsAre(content.back()));
    EXPECT_THAT(reader.header(size - 1, 2), IsEmpty());
    EXPECT_THAT(reader.header(size, 1), IsEmpty());
}

TEST_F(GuardedReaderTest, GivesAsMuchOfAHeaderAsThereIs) {
    EXPECT_THAT(reader.headerUpTo(size - 2, 9), ElementsAre(content[content.size() - 2], content.back()));
    EXPECT_THAT(reader.headerUpTo(0, 9, 2), ElementsAre(0, 1));
    EXPECT_THAT(reader.headerUpTo(0, 2, 9), ElementsAre(0, 1));
    EXPECT_THAT(reader.headerUpTo(2, 9, 2), IsEmpty());
    EXPECT_THAT(reader.headerUpTo(-1, 9), IsEmpty());
    EXPECT_THAT(reader.headerUpTo(size, 9), IsEmpty());
}

TEST_F(GuardedReaderTest, ReadsNeighboursOnceAndGoesToAndFroForNothing) {
    reader.header(0, 8);
    reader.header(window - 8, 8);
    EXPECT_THAT(reads, ElementsAre(Read{0, window}));
    reader.header(2 * window, 8);
    reader.header(8, 8);
    reader.header(2 * window + 8, 8);
    EXPECT_THAT(reads, ElementsAre(Read{0, window}, Read{2 * window, window}));
    EXPECT_THAT(reader.header(window - 7, 8), SizeIs(8)) << "the last of them is not there yet";
    EXPECT_THAT(reads, SizeIs(3));
}

TEST_F(GuardedReaderTest, PaysForWhatItSearches) {
    Bytes buffer(1000);
    EXPECT_EQ(reader.search(size - 10, buffer), 10U);
    EXPECT_EQ(reader.budgetLeft(), GuardedReader::searchBytes - 10);
    EXPECT_TRUE(reader.spend(GuardedReader::searchBytes - 10)) << "all of it, and no more";
    EXPECT_EQ(reader.budgetLeft(), 0);
    EXPECT_EQ(reader.search(0, buffer), 1000U);
    EXPECT_TRUE(reader.isOver());
    EXPECT_EQ(reader.budgetLeft(), 0);
    EXPECT_EQ(reader.search(0, buffer), 0U);
    EXPECT_THAT(reader.header(window, 1), IsEmpty());
    EXPECT_FALSE(reader.spend(0));
}

TEST_F(GuardedReaderTest, ReadsAudioForNothing) {
    Bytes buffer(1000);
    reader.spend(GuardedReader::searchBytes + 1);
    EXPECT_EQ(reader.audio(1, buffer), 1000U);
    EXPECT_TRUE(std::ranges::equal(buffer, std::span(content).subspan(1, 1000)));
}

TEST_F(GuardedReaderTest, BeginsAnewForTheNextPieceOfMedia) {
    reader.setBounds({.budget = -1, .deadline = GuardedReader::Clock::now() - std::chrono::seconds(1)});
    EXPECT_TRUE(reader.isOver());
    const auto before = GuardedReader::Clock::now();
    reader.renew();
    EXPECT_FALSE(reader.isOver());
    EXPECT_EQ(reader.budgetLeft(), GuardedReader::searchBytes);
    EXPECT_GE(reader.bounds().deadline, before + GuardedReader::searchTime);
}

TEST_F(GuardedReaderTest, SearchesUntilItsDeadline) {
    EXPECT_FALSE(reader.isOver());
    EXPECT_LE(reader.bounds().deadline, GuardedReader::Clock::now() + GuardedReader::searchTime);
    reader.setBounds({.deadline = GuardedReader::Clock::now() - std::chrono::seconds(1)});
    EXPECT_TRUE(reader.isOver());
    EXPECT_THAT(reader.header(0, 1), IsEmpty());
    EXPECT_THAT(reads, IsEmpty());
}

TEST_F(GuardedReaderTest, EndsWhenStopped) {
    Bytes buffer(1000);
    stop.request_stop();
    EXPECT_TRUE(reader.isOver());
    EXPECT_EQ(reader.search(0, buffer), 0U);
    EXPECT_EQ(reader.audio(0, buffer), 0U);
    EXPECT_THAT(reads, IsEmpty());
}

TEST(GuardedReaderOfABadFile, GivesNothingWhereAReadFails) {
    const Bytes content(2 * GuardedReader::windowBytes, 1);
    GuardedReader reader(failingAfter(1, content), {});
    EXPECT_THAT(reader.header(0, 1), ElementsAre(1));
    EXPECT_THAT(reader.header(window, 1), IsEmpty());
    EXPECT_EQ(reader.budgetLeft(), GuardedReader::searchBytes - window);
}

} // namespace
} // namespace velmora::test
