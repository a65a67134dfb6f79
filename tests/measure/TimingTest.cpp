// What the readers say of how they found a length: on what grounds, what the header stated, and why that was
// not taken.

#include "measure/bytes/Timing.h"

#include "measure/bytes/Chunks.h"
#include "measure/bytes/PartitionPoint.h"
#include "measure/formats/AiffDuration.h"
#include "measure/formats/AmrDuration.h"
#include "measure/formats/AuDuration.h"
#include "measure/formats/CafDuration.h"
#include "measure/formats/DsdDuration.h"
#include "measure/formats/WavDuration.h"
#include "measure/frames/FrameStreamDuration.h"
#include "tests/measure/MediaBytes.h"

#include <gtest/gtest.h>

#include <bit>
#include <span>
#include <string>
#include <tuple>
#include <vector>

namespace velmora::test {

namespace {

using namespace std::string_literals;

using Reader = std::optional<Timing> (*)(GuardedReader& reader, std::int64_t start);

GuardedReader readerOf(const std::string& bytes) {
    const std::span content(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return {sourceOf(content), {}};
}

std::optional<Timing> frames(GuardedReader& reader, std::int64_t start) {
    return frameStreamDuration(reader, start, reader.size());
}

/// One second is 8,000 frames of two bytes.
std::string wav(std::uint32_t stated, std::size_t there) {
    const std::string format = le(1, 2) + le(1, 2) + le(8'000, 4) + le(16'000, 4) + le(2, 2) + le(16, 2);
    return "RIFF" + le(0, 4) + "WAVE" + riffChunk("fmt ", format) + "data" + le(stated, 4) + zeros(there);
}

std::string imaWav(std::uint32_t fact) {
    const std::string format = le(0x11, 2) + le(1, 2) + le(8'000, 4) + le(0, 4) + le(256, 2) + le(4, 2);
    return "RIFF" + le(0, 4) + "WAVE" + riffChunk("fmt ", format + le(2, 2) + le(505, 2)) +
           riffChunk("fact", le(fact, 4)) + riffChunk("data", zeros(2'560));
}

/// IMA blocks of 256 bytes, whose frames follow from their size: no field says how many a block holds.
std::string imaWavWithoutExtension() {
    const std::string format = le(0x11, 2) + le(1, 2) + le(8'000, 4) + le(0, 4) + le(256, 2) + le(4, 2);
    return "RIFF" + le(0, 4) + "WAVE" + riffChunk("fmt ", format) + riffChunk("data", zeros(2'560));
}

std::string aiff(std::uint32_t frames, std::size_t bytes) {
    const std::string rate = be(16'383 + 12, 2) + be(8'000ULL << 51, 8);
    return "FORM" + be(0, 4) + "AIFF" + iffChunk("COMM", be(1, 2) + be(frames, 4) + be(16, 2) + rate) +
           iffChunk("SSND", zeros(8 + bytes));
}

std::string au(std::uint32_t stated) {
    return ".snd" + be(24, 4) + be(stated, 4) + be(3, 4) + be(8'000, 4) + be(1, 4) + zeros(16'000);
}

/// Packets of 100 bytes and 1,000 frames, of which so many play; the first 600 frames do not.
std::string caf(std::uint64_t playing, std::size_t packets) {
    const std::string table = be(9, 8) + be(playing, 8) + be(600, 4) + be(400, 4) + times(9, be(0x64, 1));
    return "caff" + be(0x10000, 4) + "desc" + be(32, 8) + be(std::bit_cast<std::uint64_t>(8'000.0), 8) +
           "aac " + zeros(8) + be(1'000, 4) + be(1, 4) + zeros(4) + "pakt" + be(table.size(), 8) + table +
           "data" + be(904, 8) + zeros(4 + 100 * packets);
}

std::string dsf(std::uint64_t samples) {
    return "DSD " + le(28, 8) + zeros(16) + "fmt " + le(52, 8) + zeros(12) + le(1, 4) + le(2'822'400, 4) +
           le(1, 4) + le(samples, 8) + zeros(8) + "data" + le(0, 8) + zeros(352'800);
}

/// A hundred frames of MPEG layer 3 at 44,100 Hz, after one that states `stated` frames and bytes.
std::string mp3(std::uint32_t frames, std::uint32_t bytes) {
    const std::string head = "\xFF\xFB\x90\x00"s;
    const std::string statement = zeros(32) + "Xing" + be(3, 4) + be(frames, 4) + be(bytes, 4);
    return head + statement + zeros(413 - statement.size()) + times(100, head + zeros(413));
}

struct Row {
    const char* name;
    Reader reader;
    std::string bytes;
    Timing expected;
};

constexpr double mp3Seconds = 100 * 1152 / 44'100.0;

} // namespace

TEST(Timing, TellsHowEachReaderFoundIt) {
    const auto [stated, counted, sized] = std::tuple(Basis::stated, Basis::counted, Basis::sized);
    const std::vector<Row> rows = {
        {"wav", &wavDuration, wav(16'000, 16'000), {1, sized, 1}},
        {"wav cut off", &wavDuration, wav(32'000, 16'000), {1, sized, 2, Doubt::beyondEnd}},
        {"wav of a pipe", &wavDuration, wav(0xFFFFFFFF, 16'000), {1, sized, {}, Doubt::unfinished}},
        {"wav with fact", &wavDuration, imaWav(4'900), {0.6125, stated, 0.6125}},
        {"wav, wrong fact", &wavDuration, imaWav(800), {0.63125, sized, 0.1, Doubt::disagrees}},
        {"wav, block of unstated frames", &wavDuration, imaWavWithoutExtension(), {0.63125, sized, 0.63125}},
        {"aiff", &aiffDuration, aiff(4'000, 16'000), {0.5, stated, 0.5}},
        {"aiff cut off", &aiffDuration, aiff(16'000, 16'000), {1, sized, 2, Doubt::beyondEnd}},
        {"aiff of a pipe", &aiffDuration, aiff(0, 16'000), {1, sized, {}, Doubt::unfinished}},
        {"au", &auDuration, au(16'000), {1, sized, 1}},
        {"au of a pipe", &auDuration, au(0xFFFFFFFF), {1, sized, {}, Doubt::unfinished}},
        {"caf", &cafDuration, caf(8'000, 9), {1, stated, 1}},
        {"caf cut off", &cafDuration, caf(8'000, 4), {0.425, counted, 1, Doubt::beyondEnd, 4}},
        {"caf that does not say", &cafDuration, caf(0, 9), {1.05, counted, {}, Doubt::unfinished, 9}},
        {"dsf", &dsfDuration, dsf(1'411'200), {0.5, stated, 0.5}},
        {"dsf cut off", &dsfDuration, dsf(5'644'800), {1, sized, 2, Doubt::beyondEnd}},
        {"amr", &amrDuration, "#!AMR\n" + times(50, "\x3C" + zeros(31)), {1, counted, {}, Doubt::none, 50}},
        {"mp3", &frames, mp3(100, 101 * 417), {mp3Seconds, stated, mp3Seconds}},
        {"mp3 cut off",
         &frames,
         mp3(200, 201 * 417),
         {mp3Seconds, counted, 2 * mp3Seconds, Doubt::beyondEnd, 100}},
    };
    for (const Row& row : rows) {
        GuardedReader reader = readerOf(row.bytes);
        const auto timing = row.reader(reader, 0);
        ASSERT_TRUE(timing) << row.name;
        EXPECT_NEAR(timing->seconds, row.expected.seconds, 1e-9) << row.name;
        EXPECT_EQ(timing->basis, row.expected.basis) << row.name;
        ASSERT_EQ(timing->stated.has_value(), row.expected.stated.has_value()) << row.name;
        EXPECT_NEAR(timing->stated.value_or(0), row.expected.stated.value_or(0), 1e-9) << row.name;
        EXPECT_EQ(timing->doubt, row.expected.doubt) << row.name;
        EXPECT_EQ(timing->frames, row.expected.frames) << row.name;
    }
}

TEST(Timing, IsTheShorterOfWhatIsStatedAndWhatIsThere) {
    const Timing there{.seconds = 2, .basis = Basis::counted, .frames = 7};
    EXPECT_EQ(withinFile(1, there), (Timing{1, Basis::stated, 1, Doubt::none, 7}));
    EXPECT_EQ(withinFile(2, there), (Timing{2, Basis::stated, 2, Doubt::none, 7}));
    EXPECT_EQ(withinFile(3, there), (Timing{2, Basis::counted, 3, Doubt::beyondEnd, 7}));
    EXPECT_EQ(withinFile({}, there), (Timing{2, Basis::counted, {}, Doubt::unfinished, 7}));
}

TEST(Chunks, AreReadAsTheirLayoutSays) {
    const std::string bytes = "abcd" + le(3, 4) + "xyz" + zeros(1) + "efgh" + le(99, 4) + "uv";
    GuardedReader reader = readerOf(bytes);
    constexpr ChunkLayout even{.alignment = 2};
    const auto first = chunkAt(reader, even, 0);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->name, "abcd");
    EXPECT_EQ(first->end(), 11);
    EXPECT_EQ(first->next, 12);
    EXPECT_EQ(contentOf(reader, *first, 9).size(), 3);
    const auto second = chunkAt(reader, even, first->next);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->stated, 99);
    EXPECT_EQ(second->size, 2);
    EXPECT_TRUE(second->isCutOff());
    EXPECT_FALSE(chunkAt(reader, even, second->next));
    EXPECT_FALSE(chunkAt(reader, even, 15)) << "its header is cut off";
}

TEST(Chunks, WhoseSizeIsLessThanTheirHeaderReachToTheEnd) {
    const std::string bytes = "abcd" + le(7, 4) + "xyz";
    GuardedReader reader = readerOf(bytes);
    const auto chunk = chunkAt(reader, {.countsHeader = true}, 0);
    ASSERT_TRUE(chunk);
    EXPECT_EQ(chunk->stated, Chunk::unknownSize);
    EXPECT_EQ(chunk->size, 3);
}

TEST(PartitionPoint, CountsTheFirstOnes) {
    for (std::int64_t count = 0; count < 9; ++count) {
        for (std::int64_t first = 0; first <= count; ++first) {
            EXPECT_EQ(partitionPoint(count, [first](std::int64_t i) { return i < first; }), first) << count;
        }
    }
}

} // namespace velmora::test
