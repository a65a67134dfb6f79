// AAC after one header, made of what a real encoder wrote as ADTS.

#include "measure/formats/AdifDuration.h"

#include "tests/measure/MediaBytes.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::test {

namespace {

/// The blocks of a stream of ADTS frames without checksums.
struct Blocks {
    std::string bytes;
    std::int64_t count = 0;
};

Blocks blocksOf(const std::string& adts) {
    constexpr std::size_t headerBytes = 7;
    const auto byte = [&adts](std::size_t at) { return static_cast<std::uint8_t>(adts.at(at)); };
    Blocks blocks;
    for (std::size_t at = 0; at < adts.size(); ++blocks.count) {
        const std::size_t length = (byte(at + 3) & 3U) << 11 | byte(at + 4) << 3 | byte(at + 5) >> 5;
        blocks.bytes += adts.substr(at + headerBytes, length - headerBytes);
        at += length;
    }
    return blocks;
}

/// Bits of AAC's tables: one program of low complexity at the rate of that index, with one element in front,
/// a pair of channels or a single one.
std::string programOf(const std::string& rateIndex, bool isPair) {
    const std::string noOtherElements = "0000"
                                        "0000"
                                        "00"
                                        "000"
                                        "0000";
    const std::string noMixdown = "000";
    return "0000"
           "01" +
           rateIndex + "0001" + noOtherElements + noMixdown + (isPair ? "1" : "0") + "0000";
}

const std::string stereo = programOf("0100", true); // 44.1 kHz
const std::string mono8k = programOf("1011", false);

std::string bytesOf(std::string bits) {
    bits.resize((bits.size() + 7) / 8 * 8, '0');
    std::string bytes;
    for (std::size_t at = 0; at < bits.size(); at += 8) {
        bytes += static_cast<char>(std::stoi(bits.substr(at, 8), nullptr, 2));
    }
    return bytes;
}

std::string zeroBits(std::size_t count) {
    return std::string(count, '0');
}

/// A header of variable bit rate.
std::string adif(const std::string& program) {
    return "ADIF" +
           bytesOf("0"
                   "00"
                   "1" +
                   zeroBits(23) + "0000" + program) +
           zeros(1);
}

std::string encodedAdts(const AudioShape& shape) {
    return read(encodeAudio(freshFolder() / "track.aac", shape));
}

constexpr AudioShape music{.frames = 220'821};

} // namespace

TEST(Adif, PlaysTheBlocksThatDecode) {
    const Blocks blocks = blocksOf(encodedAdts(music));
    const double seconds = static_cast<double>(blocks.count) * 1024 / 44'100;
    EXPECT_NEAR(secondsOf(adif(stereo) + blocks.bytes), seconds, 1e-9);
    EXPECT_NEAR(secondsOf(adif(stereo) + blocks.bytes + "TAG" + zeros(125)), seconds, 1e-9);
    const Blocks speech = blocksOf(encodedAdts(oneSecond));
    EXPECT_NEAR(secondsOf(adif(mono8k) + speech.bytes), static_cast<double>(speech.count) * 1024 / 8'000,
                1e-9);
}

TEST(Adif, IsReadWithAllThatItsHeaderMayHold) {
    const Blocks blocks = blocksOf(encodedAdts(music));
    const std::string constantRate = bytesOf("1" + zeroBits(72) +
                                             "00"
                                             "0" +
                                             zeroBits(23) + "0000" + zeroBits(20) + stereo);
    EXPECT_NEAR(secondsOf("ADIF" + constantRate +
                          "\x05"
                          "words" +
                          blocks.bytes),
                static_cast<double>(blocks.count) * 1024 / 44'100, 1e-9);
}

TEST(Adif, CutOffPlaysWhatIsThere) {
    const Blocks blocks = blocksOf(encodedAdts(music));
    const std::string whole = adif(stereo) + blocks.bytes;
    EXPECT_NEAR(secondsOf(whole.substr(0, whole.size() / 2)), music.seconds() / 2, music.seconds() / 8);
    EXPECT_EQ(secondsOf(adif(stereo)), -1);
    for (std::size_t length = 0; length < adif(stereo).size(); ++length) {
        EXPECT_EQ(secondsOf(whole.substr(0, length)), -1) << length;
    }
    EXPECT_EQ(secondsOf(adif(stereo) + zeros(5'000)), -1) << "no block";
}

} // namespace velmora::test
