// Musepack: what its header states, and the packets of a stream that lacks its end.

#include "tests/measure/MediaBytes.h"
#include "tests/measure/TwelveSeconds.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace velmora::test {

namespace {

/// A packet of Musepack's stream version 8.
std::string musepackPacket(std::string_view key, std::string_view content) {
    const std::size_t size = content.size() + 4;
    return std::string(key) + be(0x80 | size >> 7, 1) + be(size & 0x7F, 1) + std::string(content);
}

} // namespace

TEST(Musepack, IsWhatItStates) {
    EXPECT_NEAR(secondsOf(encoded("mpc")), twelveSeconds.seconds(), 1e-9);
    const auto version7 = [](std::uint32_t frames, std::uint32_t last) {
        return "MP+\x07" + le(frames, 4) + le(0x00010000, 4) + zeros(8) + le(last, 4) + zeros(4) +
               zeros(1'000);
    };
    EXPECT_NEAR(secondsOf(version7(100, 1U << 31 | 200U << 20)), (99 * 1152 + 200) / 48'000.0, 1e-9);
    EXPECT_NEAR(secondsOf(version7(100, 0)), (100 * 1152 - 481) / 48'000.0, 1e-9);
}

TEST(Musepack, OfVersion8WithoutItsEndIsThePacketsThatAreThere) {
    const auto stream = [](std::uint32_t samples) {
        const std::string header = zeros(4) + "\x08" + be(0x80 | samples >> 14, 1) +
                                   be(0x80 | (samples >> 7 & 0x7F), 1) + be(samples & 0x7F, 1) + "\x64" +
                                   "\x20" + "\x12"; // 100 samples to leave out, 48 kHz, 16 frames a packet
        return "MPCK" + musepackPacket("SH", header) + musepackPacket("RG", zeros(9)) +
               times(10, musepackPacket("AP", zeros(996)));
    };
    const auto seconds = [](std::int64_t samples) { return static_cast<double>(samples - 100) / 48'000; };
    constexpr std::int64_t packet = 16 * 1152;
    constexpr std::uint32_t stated = 9 * packet + 500;
    const std::string file = stream(stated);
    EXPECT_NEAR(secondsOf(file + "SE\x03"), seconds(stated), 1e-9);
    EXPECT_NEAR(secondsOf(stream(2 * packet) + "SE\x03" + "TAG" + zeros(125)), seconds(2 * packet), 1e-9)
        << "believed where the end is";
    EXPECT_NEAR(secondsOf(file), seconds(stated), 1e-9);
    EXPECT_NEAR(secondsOf(stream(2 * packet)), seconds(2 * packet), 1e-9);
    EXPECT_NEAR(secondsOf(file.substr(0, file.size() - 4'000)), seconds(6 * packet), 1e-9);
    EXPECT_NEAR(secondsOf(file.substr(0, file.size() - 3'999)), seconds(6 * packet), 1e-9);
    EXPECT_NEAR(secondsOf(stream(0) + "SE\x03"), seconds(10 * packet), 1e-9) << "not known when it began";
}

TEST(Musepack, OfVersion8ThatIsCutOffIsItsWholeFrames) {
    const std::string file = encoded("mpc");
    for (const std::size_t part : {1U, 3U, 4U, 7U}) {
        const std::string beginning = file.substr(0, file.size() / 8 * part);
        EXPECT_NEAR(secondsOf(beginning), decodedSeconds(beginning), 0.03) << part << ": a frame is 26 ms";
    }
}

} // namespace velmora::test
