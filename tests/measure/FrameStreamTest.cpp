// MPEG audio and ADTS: streams of frames, built header by header.

#include "measure/frames/FrameStreamDuration.h"
#include "tests/measure/MediaBytes.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace velmora::test {

namespace {

using namespace std::string_literals;

/// A frame of MPEG audio: its header and silence. `header` lacks the sync byte.
std::string frame(std::uint32_t header, std::size_t bytes) {
    return "\xFF" + be(header, 3) + zeros(bytes - 4);
}

// Layer 3 at 44.1 kHz and 128 kbit/s, stereo: 417 bytes, 1152 samples.
constexpr std::uint32_t layer3 = 0xFB9000;
constexpr std::size_t layer3Bytes = 417;
constexpr double layer3Seconds = 1152.0 / 44'100;

std::string layer3Frames(std::size_t count) {
    return times(count, frame(layer3, layer3Bytes));
}

struct XingFields {
    std::string_view name = "Xing";
    std::uint32_t frames = 100;
    std::uint32_t bytes = 101 * layer3Bytes;
    std::uint32_t delay = 576;
    std::uint32_t padding = 1000;
    std::uint32_t header = layer3;
    std::size_t sideInformation = 32; ///< bytes
};

/// A layer 3 frame that holds a statement, with LAME's addition.
std::string xingFrame(const XingFields& fields) {
    std::string statement = std::string(fields.name) + be(0x0F, 4) + be(fields.frames, 4) +
                            be(fields.bytes, 4) + zeros(100) + be(50, 4) + "LAME3.100" + zeros(12) +
                            be(fields.delay << 12 | fields.padding, 3);
    std::string whole = frame(fields.header, layer3Bytes);
    return whole.replace(4 + fields.sideInformation, statement.size(), statement);
}

std::string id3v2(std::size_t content) {
    return "ID3\x04"s + zeros(2) + be(content >> 21 & 0x7F, 1) + be(content >> 14 & 0x7F, 1) +
           be(content >> 7 & 0x7F, 1) + be(content & 0x7F, 1) + times(content / 2, "\xFF\xFB");
}

std::string id3v1() {
    return "TAG" + zeros(125);
}

std::string apeTag(std::size_t items) {
    const std::string middle = le(2000, 4) + le(items + 32, 4) + le(1, 4);
    return "APETAGEX" + middle + le(0xA0000000, 4) + zeros(8) + times(items, "x") + "APETAGEX" + middle +
           le(0x80000000, 4) + zeros(8);
}

std::string adts(std::uint32_t rateIndex, std::size_t bytes, std::uint32_t blocks) {
    const auto length = static_cast<std::uint32_t>(bytes);
    return "\xFF\xF1" + be(0x40 | rateIndex << 2, 1) + be(0x80 | length >> 11, 1) +
           be(length >> 3 & 0xFF, 1) + be((length & 7) << 5 | 0x1F, 1) + be(0xFC | (blocks - 1), 1) +
           times(bytes - 7, be(0x21, 1));
}

/// An ADTS frame at 44.1 kHz with `block` after its header.
std::string adtsWith(const std::string& block) {
    return adts(4, 7 + block.size(), 1).replace(7, block.size(), block);
}

} // namespace

struct HeaderRow {
    std::string_view name;
    std::uint32_t header;
    std::size_t bytes;
    double seconds; ///< of one frame
};

void PrintTo(const HeaderRow& row, std::ostream* out) {
    *out << row.name;
}

class MpegHeaders : public testing::TestWithParam<HeaderRow> {};

TEST_P(MpegHeaders, GiveTheLengthOfTheirFrames) {
    const HeaderRow& row = GetParam();
    EXPECT_NEAR(secondsOf(times(20, frame(row.header, row.bytes))), 20 * row.seconds, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Versions, MpegHeaders,
                         testing::Values(HeaderRow{"v1_layer1_384k_44100", 0xFFC000, 416, 384.0 / 44'100},
                                         HeaderRow{"v1_layer1_padded", 0xFFC200, 420, 384.0 / 44'100},
                                         HeaderRow{"v1_layer2_192k_48000", 0xFDA400, 576, 1152.0 / 48'000},
                                         HeaderRow{"v1_layer3_128k_44100", 0xFB9000, 417, 1152.0 / 44'100},
                                         HeaderRow{"v1_layer3_320k_32000", 0xFBE800, 1440, 1152.0 / 32'000},
                                         HeaderRow{"v2_layer2_64k_24000", 0xF58400, 384, 1152.0 / 24'000},
                                         HeaderRow{"v2_layer3_64k_22050", 0xF38000, 208, 576.0 / 22'050},
                                         HeaderRow{"v25_layer3_16k_8000", 0xE32800, 144, 576.0 / 8'000},
                                         HeaderRow{"v1_free_format", 0xFB0000, 1000, 1152.0 / 44'100}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FrameStream, CountsFramesWhereNothingIsStated) {
    EXPECT_NEAR(secondsOf(layer3Frames(1000)), 1000 * layer3Seconds, 1e-9);
    EXPECT_NEAR(secondsOf(layer3Frames(1)), layer3Seconds, 1e-9);
}

TEST(FrameStream, StepsOverTagsAndJunk) {
    const std::string frames = layer3Frames(50);
    const double seconds = 50 * layer3Seconds;
    EXPECT_NEAR(secondsOf(id3v2(5'000) + frames), seconds, 1e-9);
    EXPECT_NEAR(secondsOf(id3v2(5'000) + id3v2(300'000) + frames), seconds, 1e-9);
    EXPECT_NEAR(secondsOf(frames + id3v1()), seconds, 1e-9);
    EXPECT_NEAR(secondsOf(frames + apeTag(700) + id3v1()), seconds, 1e-9);
    EXPECT_NEAR(secondsOf(frames + id3v2(900) + frames + id3v1() + frames + apeTag(99) + frames), 4 * seconds,
                1e-9);
    EXPECT_NEAR(secondsOf(zeros(10'000) + frames), seconds, 1e-9);
    EXPECT_NEAR(secondsOf(times(999, "junk") + frames), seconds, 1e-9);
    EXPECT_NEAR(secondsOf(frames + zeros(70'000) + frames), 2 * seconds, 1e-9);
    EXPECT_NEAR(secondsOf(frames + times(1000, "\xFF\xFA\x01") + frames), 2 * seconds, 1e-9);
}

TEST(FrameStream, LeavesOutALastFrameThatIsCutOff) {
    const std::string frames = layer3Frames(50);
    EXPECT_NEAR(secondsOf(frames.substr(0, frames.size() - 1)), 49 * layer3Seconds, 1e-9);
}

TEST(FrameStream, AddsStreamsOfDifferentRates) {
    const std::string other = times(30, frame(0xF38000, 208)); // 22.05 kHz
    EXPECT_NEAR(secondsOf(layer3Frames(50) + other), 50 * layer3Seconds + 30 * 576.0 / 22'050, 1e-9);
}

TEST(FrameStream, BelievesAStatementThatFitsTheFile) {
    // The statement has a frame less than there are: proof that it is believed.
    const std::string file = xingFrame({.frames = 99}) + layer3Frames(100);
    const double trimmed = (576.0 + 529 + 1000 - 529) / 44'100;
    EXPECT_NEAR(secondsOf(file), 99 * layer3Seconds - trimmed, 1e-9);
    EXPECT_NEAR(secondsOf(file + id3v1()), 99 * layer3Seconds - trimmed, 1e-9);
}

TEST(FrameStream, CountsWhereTheStatementDoesNotFitTheFile) {
    const double trim = (576.0 + 529) / 44'100;
    const double padding = (1000.0 - 529) / 44'100;
    EXPECT_NEAR(secondsOf(xingFrame({}) + layer3Frames(200)), 200 * layer3Seconds - trim - padding, 1e-9);
    EXPECT_NEAR(secondsOf(xingFrame({}) + layer3Frames(60)), 60 * layer3Seconds - trim, 1e-9) << "cut off";
    EXPECT_NEAR(secondsOf(xingFrame({.frames = 0}) + layer3Frames(100)), 100 * layer3Seconds - trim - padding,
                1e-9);
}

TEST(FrameStream, FindsTheStatementWhateverItsHeaderSaysOfChannels) {
    constexpr std::uint32_t mono = 0xFB90C0;
    const double seconds = secondsOf(xingFrame({.frames = 99}) + layer3Frames(100));
    for (const std::size_t sideInformation : {32, 17, 9, 34, 19, 11}) {
        for (const std::uint32_t header : {layer3, mono}) {
            const XingFields fields{.frames = 99, .header = header, .sideInformation = sideInformation};
            EXPECT_NEAR(secondsOf(xingFrame(fields) + layer3Frames(100)), seconds, 1e-9) << sideInformation;
        }
    }
}

TEST(FrameStream, TakesOffTheFrameThatCountsItself) {
    const double trimmed = (576.0 + 529 + 1000 - 529) / 44'100;
    const double seconds = 100 * layer3Seconds - trimmed;
    EXPECT_NEAR(secondsOf(xingFrame({.frames = 100}) + layer3Frames(100)), seconds, 1e-9);
    EXPECT_NEAR(secondsOf(xingFrame({.frames = 101}) + layer3Frames(100)), seconds, 1e-9);

    // Padded by a real encoder, so that the frames keep the bit rate.
    const AudioShape shape{.frames = 220'821};
    std::string file =
        read(encodeAudio(freshFolder() / "track.mp3", R"(lame --quiet -b 128 "$IN" "$OUT")", shape));
    const std::size_t lowestByteOfFrames = file.find("Info") + 11;
    ++file.at(lowestByteOfFrames);
    EXPECT_NEAR(secondsOf(file), shape.seconds(), 1e-6);
}

TEST(FrameStream, BelievesNoMoreFramesThanItsBytesHold) {
    const double trim = (576.0 + 529) / 44'100;
    for (const std::uint32_t frames : {0xFFFFFFFFU, 10'000U}) {
        EXPECT_NEAR(secondsOf(xingFrame({.frames = frames}) + layer3Frames(100)), 100 * layer3Seconds - trim,
                    1e-9)
            << frames;
    }
}

TEST(FrameStream, BelievesVbri) {
    std::string vbri = frame(layer3, layer3Bytes);
    vbri.replace(36, 18, "VBRI" + be(1, 2) + zeros(4) + be(101 * layer3Bytes, 4) + be(98, 4));
    EXPECT_NEAR(secondsOf(vbri + layer3Frames(100)), 98 * layer3Seconds, 1e-9);
}

TEST(FrameStream, CountsBlocksOfAdts) {
    for (std::uint32_t blocks = 1; blocks <= 4; ++blocks) {
        EXPECT_NEAR(secondsOf(times(40, adts(4, 300, blocks))), 40 * blocks * 1024 / 44'100.0, 1e-9)
            << blocks;
    }
    EXPECT_NEAR(secondsOf(zeros(5'000) + times(40, adts(8, 300, 1))), 40 * 1024 / 16'000.0, 1e-9);
}

TEST(FrameStream, CountsNoBlockOfAdtsThatHoldsOnlyFilling) {
    const std::string sound = times(40, adts(4, 300, 1));
    const double seconds = 40 * 1024 / 44'100.0;
    for (const std::string& filling : {
             be(0xE0, 1),                               // the end of the block at once
             be(0xC1C0, 2),                             // filling of 0 bytes
             be(0xC40001C0, 4),                         // of 2 bytes
             be(0xDE02, 2) + zeros(14) + be(0x01C0, 2), // of 15: their number has a byte of its own
         }) {
        EXPECT_NEAR(secondsOf(adtsWith(filling) + sound), seconds, 1e-9) << filling.size();
    }
    const std::string namedFirst = be(0xC4, 1) + zeros(2) + be(0x20, 1); // the sound comes after it
    EXPECT_NEAR(secondsOf(adtsWith(namedFirst) + sound), seconds + 1024 / 44'100.0, 1e-9);
    std::string twoBlocks = adtsWith(be(0xE0, 1) + zeros(9));
    twoBlocks[6] = static_cast<char>(twoBlocks[6] | 1);
    EXPECT_NEAR(secondsOf(twoBlocks + sound), seconds + 2 * 1024 / 44'100.0, 1e-9);
    EXPECT_EQ(secondsOf(times(40, adtsWith(be(0xE0, 1)))), -1);
}

TEST(FrameStream, CountsTheFewFramesThatEndAtATagOrAtTheEnd) {
    const std::string junk = times(999, "junk");
    for (const std::size_t count : {1, 2, 4}) {
        const std::string frames = layer3Frames(count);
        const double seconds = static_cast<double>(count) * layer3Seconds;
        for (const std::string& tag : {std::string(), id3v1(), id3v2(9'000), apeTag(700)}) {
            EXPECT_NEAR(secondsOf(frames + tag), seconds, 1e-9) << count;
            EXPECT_NEAR(secondsOf(junk + frames + tag), seconds, 1e-9) << count;
        }
    }
}

TEST(FrameStream, CountsTheFewFramesThatStandFirst) {
    const std::string frames = layer3Frames(2);
    EXPECT_NEAR(secondsOf(frames + zeros(9'000)), 2 * layer3Seconds, 1e-9);
    EXPECT_NEAR(secondsOf(frames.substr(0, 800)), layer3Seconds, 1e-9) << "the second cut off";
    EXPECT_EQ(secondsOf(layer3Frames(1) + zeros(9'000)), -1) << "a header alone may be chance";
}

TEST(FrameStream, BelievesALongRunOfFramesInWhateverJunk) {
    const std::string junk = times(999, "junk");
    EXPECT_NEAR(secondsOf(junk + layer3Frames(100) + zeros(500'000)), 100 * layer3Seconds, 1e-9);
    EXPECT_EQ(secondsOf(junk + layer3Frames(99) + zeros(500'000)), -1);
    const std::string twice = layer3Frames(60) + junk + layer3Frames(60);
    EXPECT_EQ(secondsOf(junk + twice + zeros(500'000)), -1) << "two runs, none of them long";
    EXPECT_NEAR(secondsOf(junk + layer3Frames(100) + zeros(GuardedReader::searchBytes + 1)),
                100 * layer3Seconds, 1e-9)
        << "more zeros than are searched";
}

TEST(FrameStream, FindsNoFramesInWhatIsNoAudio) {
    EXPECT_EQ(secondsOf(""), -1);
    EXPECT_EQ(secondsOf(zeros(100'000)), -1);
    EXPECT_EQ(secondsOf(times(50'000, "\xFF")), -1);
    EXPECT_EQ(secondsOf(times(10'000, "\xFF\xFB\x90\x00"s)), -1) << "headers without room for frames";
    std::string jumpTable; // negative numbers, as programs hold them
    for (std::uint32_t i = 0; i < 20'000; ++i) {
        jumpTable += le(0xFFFFF000 + (i * 37 & 0xFFF), 4);
    }
    EXPECT_EQ(secondsOf("\x7F"
                        "ELF" +
                        jumpTable),
              -1);
}

TEST(FrameStream, TimesRealEncodersOfEveryKind) {
    const AudioShape shape{.frames = 220'821};
    const fs::path folder = freshFolder();
    const auto seconds = [&](std::string_view command) {
        return secondsOf(read(encodeAudio(folder / "track.mp3", command, shape)));
    };
    EXPECT_NEAR(seconds(R"(lame --quiet -V2 "$IN" "$OUT")"), shape.seconds(), 1e-6);
    EXPECT_NEAR(seconds(R"(lame --quiet --abr 130 "$IN" "$OUT")"), shape.seconds(), 1e-6);
    EXPECT_NEAR(seconds(R"(lame --quiet --freeformat -b 450 "$IN" "$OUT")"), shape.seconds(), 1e-6);
    EXPECT_NEAR(seconds(R"(lame --quiet -V4 --resample 11.025 -m m "$IN" "$OUT")"), shape.seconds(), 0.001);
    // Without a statement the encoder's own samples at both ends play.
    EXPECT_NEAR(seconds(R"(lame --quiet -V2 -t "$IN" "$OUT")"), shape.seconds() + 0.04, 0.03);
    EXPECT_NEAR(seconds(R"(ffmpeg -v error -y -i "$IN" -c:a mp2 -ar 24000 -b:a 64k -f mp2 "$OUT")"),
                shape.seconds() + 0.03, 0.03);
}

} // namespace velmora::test
