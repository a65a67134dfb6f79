// WAV and its relatives: what their headers may say wrong, and how far they are believed.

#include "tests/measure/MediaBytes.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace velmora::test {

namespace {

using namespace std::string_literals;

std::string waveFormat(std::uint16_t tag, std::uint16_t channels, std::uint32_t rate, std::uint16_t block,
                       std::uint16_t bits, std::string_view extension = "") {
    return le(tag, 2) + le(channels, 2) + le(rate, 4) + le(std::uint64_t{rate} * block, 4) + le(block, 2) +
           le(bits, 2) + std::string(extension);
}

const std::string pcm8k = waveFormat(1, 1, 8'000, 2, 16); // 16,000 bytes a second

std::string riff(std::string_view content, std::string_view magic = "RIFF") {
    return std::string(magic) + le(content.size() + 4, 4) + "WAVE" + std::string(content);
}

std::string dataChunk(std::uint32_t stated, std::size_t there) {
    return "data" + le(stated, 4) + times(there, be(0x55, 1));
}

} // namespace

TEST(Wav, IsItsBytesByItsRate) {
    EXPECT_NEAR(secondsOf(riff(riffChunk("fmt ", pcm8k) + dataChunk(16'000, 16'000))), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(riff(riffChunk("fmt ", pcm8k) + riffChunk("LIST", zeros(9'001)) +
                               dataChunk(16'000, 16'000) + riffChunk("id3 ", zeros(500)))),
                1.0, 1e-9);
    const std::string extension = le(22, 2) + le(24, 2) + le(0, 4) + le(1, 2) + zeros(14);
    EXPECT_NEAR(secondsOf(riff(riffChunk("fmt ", waveFormat(0xFFFE, 6, 8'000, 18, 24, extension)) +
                               dataChunk(144'000, 144'000))),
                1.0, 1e-9);
}

TEST(Wav, IsWhatTheFileHoldsWhateverItsHeaderSays) {
    const std::string head = riffChunk("fmt ", pcm8k);
    for (const std::uint32_t stated : {0U, 0xFFFFFFFFU, 0x7FFFFFFFU, 0x7FFFF000U, 0xFFFFFFDBU, 999'999U}) {
        EXPECT_NEAR(secondsOf(riff(head + dataChunk(stated, 16'000))), 1.0, 1e-9) << stated;
    }
    EXPECT_NEAR(secondsOf(riff(head + dataChunk(16'000, 8'000))), 0.5, 1e-9) << "cut off";
}

TEST(Wav, ThatIsEmptyPlaysNothing) {
    const std::string head = riffChunk("fmt ", pcm8k);
    EXPECT_TRUE(is<NothingPlays>(answerFor(riff(head + dataChunk(0, 0))))) << "and no other tool may guess";
    EXPECT_FALSE(is<Timed>(answerFor(riff(head + dataChunk(0, 0) + riffChunk("LIST", zeros(400))))));
}

TEST(Wav, ReadsItsRelatives) {
    const std::string longSizes = riffChunk("ds64", le(0, 8) + le(16'000, 8) + le(8'000, 8) + le(0, 4));
    const std::string content = longSizes + riffChunk("fmt ", pcm8k) + dataChunk(0xFFFFFFFF, 16'000);
    EXPECT_NEAR(secondsOf(riff(content + riffChunk("LIST", zeros(800)), "RF64")), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(riff(content + riffChunk("LIST", zeros(800)), "BW64")), 1.0, 1e-9);
    const std::string bigEndian = be(1, 2) + be(1, 2) + be(8'000, 4) + be(16'000, 4) + be(2, 2) + be(16, 2);
    EXPECT_NEAR(
        secondsOf("RIFX" + be(0, 4) + "WAVE" + iffChunk("fmt ", bigEndian) + iffChunk("data", zeros(16'000))),
        1.0, 1e-9);
    const std::string extension = be(22, 2) + be(16, 2) + be(0, 4) + be(1, 4) + zeros(12);
    const std::string tag = be(1, 2);
    for (const std::string& half : {zeros(2) + tag, tag + zeros(2)}) { // libsndfile's, sox's
        const std::string extended = be(22, 2) + be(16, 2) + be(0, 4) + half + zeros(12);
        EXPECT_NEAR(secondsOf("RIFX" + be(0, 4) + "WAVE" +
                              iffChunk("fmt ", be(0xFFFE, 2) + bigEndian.substr(2) + extended) +
                              iffChunk("data", zeros(16'000))),
                    1.0, 1e-9);
    }
}

TEST(Wav, UnderstandsOddChunksWithAndWithoutPadding) {
    const std::string odd = "note" + le(5, 4) + "12345";
    const std::string rest = riffChunk("fmt ", pcm8k) + dataChunk(16'000, 16'000);
    EXPECT_NEAR(secondsOf(riff(odd + zeros(1) + rest)), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(riff(odd + rest)), 1.0, 1e-9);
}

TEST(Wav, ReckonsCompressedBlocks) {
    // IMA: 4 bytes of state and a sample, then two samples a byte.
    const std::string ima = riffChunk("fmt ", waveFormat(0x11, 1, 8'000, 256, 4, le(2, 2) + le(505, 2)));
    EXPECT_NEAR(secondsOf(riff(ima + dataChunk(2'560, 2'560))), 5'050 / 8'000.0, 1e-9);
    EXPECT_NEAR(secondsOf(riff(ima + dataChunk(2'560 + 56, 2'560 + 56))), (5'050 + 105) / 8'000.0, 1e-9);
    const std::string fact = riffChunk("fact", le(4'900, 4));
    EXPECT_NEAR(secondsOf(riff(ima + fact + dataChunk(2'560, 2'560))), 4'900 / 8'000.0, 1e-9);
    EXPECT_NEAR(secondsOf(riff(ima + riffChunk("fact", le(99, 4)) + dataChunk(2'560, 2'560))),
                5'050 / 8'000.0, 1e-9)
        << "a fact that does not fit";
    const std::string microsoft = riffChunk("fmt ", waveFormat(2, 2, 8'000, 512, 4, le(2, 2) + le(500, 2)));
    EXPECT_NEAR(secondsOf(riff(microsoft + dataChunk(5'120, 5'120))), 5'000 / 8'000.0, 1e-9);
    const std::string gsm = riffChunk("fmt ", waveFormat(0x31, 1, 8'000, 65, 0, le(2, 2) + le(320, 2)));
    EXPECT_NEAR(secondsOf(riff(gsm + dataChunk(6'500, 6'500))), 32'000 / 8'000.0, 1e-9);
}

TEST(Wav, CountsTheFramesOfMp3Inside) {
    const std::string frames = times(100, "\xFF\xFB\x90\x00"s + zeros(413));
    const std::string head = riffChunk("fmt ", waveFormat(0x55, 2, 44'100, 1, 0, le(12, 2) + zeros(12)));
    const auto size = static_cast<std::uint32_t>(frames.size());
    EXPECT_NEAR(secondsOf(riff(head + "data" + le(size, 4) + frames)), 100 * 1152 / 44'100.0, 1e-9);
}

TEST(Wave64, ReadsLongSizes) {
    const std::string tail = "\xF3\xAC\xD3\x11\x8C\xD1\x00\xC0\x4F\x8E\xDB\x8A"s;
    const auto chunk = [&](std::string_view name, std::uint64_t stated, const std::string& content) {
        return std::string(name) + tail + le(stated, 8) + content + zeros((8 - content.size() % 8) % 8);
    };
    const std::string file = "riff\x2E\x91\xCF\x11\xA5\xD6\x28\xDB\x04\xC1\x00\x00"s + le(0, 8) + "wave" +
                             tail + chunk("fmt ", 40, pcm8k) + chunk("junk", 24 + 13, zeros(13));
    EXPECT_NEAR(
        secondsOf(file + chunk("data", 24 + 16'000, zeros(16'000)) + chunk("list", 24 + 80, zeros(80))), 1.0,
        1e-9);
    EXPECT_NEAR(secondsOf(file + chunk("data", 24 + 99'999, zeros(16'000))), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(file + chunk("data", ~0ULL, zeros(16'000))), 1.0, 1e-9);
}

} // namespace velmora::test
