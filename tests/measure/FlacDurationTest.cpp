// FLAC whole, cut off, cut out of another file, joined, and with a header that lies or without any.

#include "measure/formats/FlacDuration.h"

#include "measure/bytes/GuardedReader.h"
#include "tests/measure/FlacBytes.h"
#include "tests/measure/HeaderBytes.h"
#include "tests/measure/MediaBytes.h"
#include "tests/measure/TwelveSeconds.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace velmora::test {

namespace {

using namespace std::string_literals;

/// `count` frames of 4,096 samples of the rate `rate`, numbered from 0.
std::string framesOf(std::uint64_t count, std::uint64_t rate) {
    std::string frames;
    for (std::uint64_t number = 0; number < count; ++number) {
        frames += flacFrame(number, 4'096, FlacBlocks::ofFixedSize, rate);
    }
    return frames;
}

std::string block(std::uint8_t type, const std::string& content, bool isLast = false) {
    return be(type | (isLast ? 0x80U : 0U), 1) + be(content.size(), 3) + content;
}

/// The content of STREAMINFO: 44.1 kHz, 16 bits, stereo.
std::string streamInfo(std::uint64_t blockSamples, std::uint64_t samples, std::uint64_t maxFrameBytes = 0) {
    return be(blockSamples, 2) + be(blockSamples, 2) + zeros(3) + be(maxFrameBytes, 3) +
           be(44'100ULL << 44 | 1ULL << 41 | 15ULL << 36 | samples, 8) + zeros(16);
}

std::string flacFile(std::uint64_t blockSamples, std::uint64_t samples, const std::string& frames) {
    return "fLaC" + block(0, streamInfo(blockSamples, samples), true) + frames;
}

/// What `command` makes of twelve seconds of FLAC at the path $FLAC.
std::string madeOfFlac(const std::string& command) {
    return encoded("flac", "FLAC=\"$OUT.whole.flac\"; flac -s -o \"$FLAC\" \"$IN\" && " + command);
}

} // namespace

TEST(Flac, IsItsSamplesWhateverItsHeaderSays) {
    EXPECT_NEAR(secondsOf(encoded("flac")), twelveSeconds.seconds(), 1e-9);
    const std::string piped = encoded("flac", R"(cat "$IN" | flac -s - -c 2>/dev/null | cat > "$OUT")");
    EXPECT_NEAR(secondsOf(piped), twelveSeconds.seconds(), 1e-9);
    std::string unstated = encoded("flac");
    unstated[8 + 13] = static_cast<char>(unstated[8 + 13] & 0xF0);
    unstated.replace(8 + 14, 4, zeros(4));
    EXPECT_NEAR(secondsOf(unstated), twelveSeconds.seconds(), 1e-9);
    EXPECT_NEAR(secondsOf(unstated + "TAG" + zeros(125)), twelveSeconds.seconds(), 1e-9);
    EXPECT_NEAR(secondsOf("ID3\x04"s + zeros(5) + be(0x64, 1) + zeros(100) + unstated),
                twelveSeconds.seconds(), 1e-9);
}

TEST(Flac, ThatIsCutOffIsItsWholeFrames) {
    const std::string file = encoded("flac", R"(flac -s -5 -o "$OUT" "$IN")");
    for (const std::size_t part : {3U, 4U, 7U}) {
        const std::string half = file.substr(0, file.size() / 8 * part);
        EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 1e-6) << part;
    }
    EXPECT_TRUE(is<NothingPlays>(answerFor(file.substr(0, 1'000)))) << "nothing but a statement";
}

TEST(Flac, ThatWasCutOutOfAnotherIsWhatItHolds) {
    for (
        const char* const command : {
            R"(ffmpeg -v error -ss 5 -i "$FLAC" -c copy "$OUT")",
            R"(ffmpeg -v error -ss 5 -t 3 -i "$FLAC" -c copy "$OUT")",
            R"(ffmpeg -v error -i "$FLAC" -c copy -f segment -segment_time 4 "$OUT.%d.flac" && cp "$OUT.1.flac" "$OUT")",
            R"(ffmpeg -v error -i "$FLAC" -c copy -f segment -segment_time 4 "$OUT.%d.flac" && cp "$OUT.2.flac" "$OUT")",
        }) {
        const std::string part = madeOfFlac(command);
        EXPECT_NEAR(secondsOf(part), decodedSeconds(part), 1e-6) << command;
        EXPECT_LT(secondsOf(part), 8) << command;
        const std::string half = part.substr(0, part.size() / 2);
        EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 1e-6) << "half of it: " << command;
    }
}

TEST(Flac, HasBlocksOfTheSizeThatItsFramesState) {
    std::string frames;
    for (std::uint64_t number = 0; number < 7; ++number) {
        frames += flacFrame(number, 16'384);
    }
    EXPECT_NEAR(secondsOf(flacFile(4'096, 0, frames)), 7 * 16'384 / 44'100.0, 1e-9);
    EXPECT_NEAR(secondsOf(flacFile(4'096, 0,
                                   flacFrame(100, 1'000, FlacBlocks::ofAnySize) +
                                       flacFrame(1'100, 500, FlacBlocks::ofAnySize))),
                1'500 / 44'100.0, 1e-9)
        << "numbered by sample";
}

TEST(Flac, IsLongerThanItsHeaderSaysWhereTheLastFrameIsWhole) {
    const std::string frames = flacFrame(0, 4'096) + flacFrame(1, 4'096) + flacFrame(2, 100);
    EXPECT_NEAR(secondsOf(flacFile(4'096, 5'000, frames)), 8'292 / 44'100.0, 1e-9);
    EXPECT_NEAR(secondsOf(flacFile(4'096, 5'000, frames + "TAG" + zeros(125))), 8'292 / 44'100.0, 1e-9);
    EXPECT_NEAR(secondsOf(flacFile(4'096, 5'000, frames.substr(0, frames.size() - 1))), 5'000 / 44'100.0,
                1e-9)
        << "else the header is believed";
}

TEST(Flac, FindsStreaminfoAfterOtherBlocks) {
    const std::string frames = flacFrame(0, 4'096) + flacFrame(1, 100);
    const std::string file = "fLaC" + block(4, zeros(8)) + block(1, zeros(9'000)) +
                             block(0, streamInfo(4'096, 4'196), true) + frames;
    EXPECT_NEAR(secondsOf(file), 4'196 / 44'100.0, 1e-9);
    EXPECT_TRUE(is<Unknown>(answerFor("fLaC" + block(4, zeros(8), true) + frames))) << "without any";
    EXPECT_NEAR(secondsOf("fLaC" + block(4, zeros(8), true) + framesOf(3, of48k)), 3 * 4'096 / 48'000.0, 1e-9)
        << "whose place a frame takes";
}

TEST(Flac, HasTheRateThatItsFramesState) {
    EXPECT_NEAR(secondsOf(flacFile(4'096, 0, framesOf(5, of48k))), 5 * 4'096 / 48'000.0, 1e-9);
}

TEST(Flac, WhoseRateChangesAddsItsParts) {
    const std::string changing = framesOf(30, of44k) + framesOf(20, of48k) + framesOf(10, of44k);
    const double seconds = 40 * 4'096 / 44'100.0 + 20 * 4'096 / 48'000.0;
    EXPECT_NEAR(secondsOf(flacFile(4'096, 0, changing + framesOf(4, of48k))), seconds + 4 * 4'096 / 48'000.0,
                1e-9);
    EXPECT_NEAR(secondsOf(flacFile(4'096, 30 * 4'096, changing)), seconds, 1e-9)
        << "and comes back, where the header states less";
    std::string numberedOn =
        flacFrame(0, 50, FlacBlocks::ofAnySize, of44k) + flacFrame(50, 50, FlacBlocks::ofAnySize, of44k);
    numberedOn +=
        flacFrame(100, 50, FlacBlocks::ofAnySize, of48k) + flacFrame(150, 50, FlacBlocks::ofAnySize, of48k);
    EXPECT_NEAR(secondsOf(flacFile(4'096, 0, numberedOn)), 100 / 44'100.0 + 100 / 48'000.0, 1e-9)
        << "and the numbers go on";
}

TEST(Flac, ThatWasJoinedIsTheSumOfItsParts) {
    const std::string one = encoded("flac");
    const std::string other = madeOfFlac(R"(ffmpeg -v error -t 7 -i "$IN" -c:a flac "$OUT")");
    const std::string small = madeOfFlac(R"(flac -s -b 1152 --until=400000 -o "$OUT" "$IN")");
    const double both = secondsOf(one) + secondsOf(other);
    EXPECT_NEAR(secondsOf(one + other), both, 1e-9);
    EXPECT_NEAR(secondsOf(other + one), both, 1e-9);
    EXPECT_NEAR(secondsOf(one + small + other), both + secondsOf(small), 1e-9) << "of other blocks";
    EXPECT_NEAR(secondsOf(one + other + "TAG" + zeros(125)), both, 1e-9);
    const std::string half = other.substr(0, other.size() / 2);
    EXPECT_NEAR(secondsOf(one + half), secondsOf(one) + secondsOf(half), 1e-9) << "the last cut off";
    const std::string frames = framesOf(100, of44k);
    const std::string even =
        "fLaC" + block(0, streamInfo(4'096, 100 * 4'096, frames.size() / 100), true) + frames;
    EXPECT_NEAR(secondsOf(even + even), 2 * secondsOf(even), 1e-9) << "more bytes than one of them can have";
}

TEST(Flac, WithoutAFileHeaderIsItsFrames) {
    const std::string file = encoded("flac");
    const std::string frames = file.substr(file.find("\xFF\xF8"));
    EXPECT_NEAR(secondsOf(frames), twelveSeconds.seconds(), 1e-9);
    EXPECT_NEAR(secondsOf(frames + "TAG" + zeros(125)), twelveSeconds.seconds(), 1e-9);
    const std::string half = frames.substr(0, frames.size() / 2);
    EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 1e-6) << "cut off";
    EXPECT_NEAR(secondsOf(flacFrame(0, 900, FlacBlocks::ofFixedSize, of48k)), 900 / 48'000.0, 1e-9)
        << "only one";
    const std::string far = flacFrame(0, 900, FlacBlocks::ofFixedSize, of48k) +
                            flacFrame(0x7FF, 900, FlacBlocks::ofFixedSize, of48k);
    const std::string unknown = framesOf(3, ofStream);
    for (const std::string& impossible : {far, unknown}) { // longer than so many bytes can be; of no rate
        const Bytes bytes(impossible.begin(), impossible.end());
        GuardedReader reader(sourceOf(std::span(bytes)), {});
        EXPECT_FALSE(bareFlacDuration(reader, 0));
    }
}

TEST(Flac, IsNotTakenForAdts) {
    // ADTS of MPEG-2 begins with the sync word of FLAC.
    const std::string command = R"(ffmpeg -v error -i "$IN" -c:a aac -f adts "$OUT")";
    std::string file = encoded("aac", command);
    const double seconds = secondsOf(file);
    EXPECT_NEAR(seconds, twelveSeconds.seconds(), 0.1);
    for (std::size_t at = 0; at + 6 < file.size();) {
        const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(file[at + i]); };
        const std::size_t length = (byte(3) & 3U) << 11 | byte(4) << 3U | byte(5) >> 5U;
        file[at + 1] = '\xF9';
        at += length;
    }
    EXPECT_NEAR(secondsOf(file), seconds, 1e-9);
}

TEST(Flac, CostsNoReadMoreWhereItsClockRunsThrough) {
    const std::string file = encoded("flac", R"(flac -s -o "$OUT" "$IN")");
    std::vector<Read> reads;
    const Bytes bytes(file.begin(), file.end());
    GuardedReader reader(counted(bytes, reads), {});
    ASSERT_TRUE(flacDuration(reader, 0));
    EXPECT_EQ(reads.size(), 3U) << "the head, what follows the padding, the tail";
}

TEST(Flac, CostsOneReadMoreForAPictureAndPadding) {
    const std::string frames = times(20, times(1'000, "x")) + flacFrame(0, 4'096);
    const std::string file = "fLaC" + block(0, streamInfo(4'096, 4'096)) + block(6, zeros(300'000)) +
                             block(1, zeros(8'192), true) + flacFrame(0, 4'096) + frames;
    std::vector<Read> reads;
    const Bytes bytes(file.begin(), file.end());
    GuardedReader reader(counted(bytes, reads), {});
    ASSERT_TRUE(flacDuration(reader, 0));
    EXPECT_EQ(reads.size(), 3U) << "the head, what follows the picture, the tail";
}

} // namespace velmora::test
