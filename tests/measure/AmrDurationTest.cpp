// AMR, built frame by frame.

#include "tests/measure/MediaBytes.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::test {

namespace {

using namespace std::string_literals;

} // namespace

TEST(AmrFrames, CountsSilenceAndMissingFrames) {
    const std::string speech = be(0x3C, 1) + times(31, "x"); // 12.2 kbit/s
    const std::string silence = be(0x44, 1) + times(5, "x");
    const std::string missing = be(0x7C, 1);
    const std::string file = "#!AMR\n" + times(10, speech) + silence + times(8, missing) + times(10, speech);
    EXPECT_NEAR(secondsOf(file), 29 * 0.02, 1e-9);
    EXPECT_NEAR(secondsOf(file.substr(0, file.size() - 1)), 28 * 0.02, 1e-9);
    EXPECT_NEAR(secondsOf(file + zeros(1'000)), 29 * 0.02, 1e-9);
}

TEST(AmrFrames, CountsWideBand) {
    const std::string speech = be(0x44, 1) + times(60, "x"); // 23.85 kbit/s
    const std::string silence = be(0x4C, 1) + times(5, "x");
    EXPECT_NEAR(secondsOf("#!AMR-WB\n" + times(100'000, speech) + times(50, silence)), 100'050 * 0.02, 1e-6);
    EXPECT_NEAR(secondsOf("#!AMR-WB_MC1.0\n"s + zeros(3) + "\x02" + times(100, speech)), 50 * 0.02, 1e-9);
}

} // namespace velmora::test
