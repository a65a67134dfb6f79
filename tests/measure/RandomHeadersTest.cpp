// Headers with random numbers in files that hold next to nothing: no answer is more than such a file can
// play.

#include "measure/formats/FormatTable.h"
#include "tests/measure/MediaBytes.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <span>
#include <string>

namespace velmora::test {

namespace {

using Random = std::mt19937; // the same numbers everywhere

/// Four bytes, as likely as not of the kind that headers lie with.
std::string word(Random& random) {
    constexpr auto lies =
        std::to_array<std::uint64_t>({0, 1, 24, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF});
    const auto number = random();
    return be(number % 2 == 0 ? lies.at(number / 2 % lies.size()) : random(), 4);
}

/// What the whole of `file` can play at most.
double maxSeconds(const std::string& file) {
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(file.data()), file.size());
    GuardedReader reader(sourceOf(bytes), {});
    const Format* const format = formatAt(reader, 0);
    constexpr double inUnlistedByte = 1;
    const double inByte = format != nullptr ? format->maxSecondsInByte : inUnlistedByte;
    return inByte * static_cast<double>(file.size());
}

} // namespace

TEST(RandomHeaders, OfEachFormatPlayNoLongerThanTheFileCan) {
    constexpr std::uint32_t seed = 20'250'117;
    Random random(seed);
    for (const Format& format : formats()) {
        for (int round = 0; round < 60; ++round) {
            std::string file(format.pattern);
            std::ranges::replace_if(
                file, [](char letter) { return letter == '?'; }, static_cast<char>(random()));
            for (auto words = random() % 300; words > 0; --words) {
                file += word(random);
            }
            EXPECT_LE(secondsOf(file), maxSeconds(file)) << format.name.text() << " " << round;
        }
    }
}

TEST(RandomHeaders, OfRealEncodersPlayNoLongerThanTheFileCan) {
    constexpr std::uint32_t seed = 20'250'118;
    Random random(seed);
    const fs::path folder = freshFolder();
    for (const std::string extension :
         {"wav", "rf64", "w64", "aif", "aifc", "au",  "caf", "voc", "flac", "wv",
          "tta", "m4a",  "mka", "ogg", "wma",  "mpc", "ra",  "amr", "mp3",  "aac"}) {
        const AudioShape shape{.frames = 32'000, .rate = 32'000, .channels = 1};
        const std::string whole = read(encodeAudio(folder / ("track." + extension), shape));
        const std::string head = whole.substr(0, 3'000);
        for (int round = 0; round < 60; ++round) {
            std::string file = head;
            for (int change = 0; change <= round % 4; ++change) {
                file.replace(4 + random() % 400, 4, word(random));
            }
            EXPECT_LE(secondsOf(file), maxSeconds(file)) << extension << " " << round;
        }
    }
}

TEST(RandomHeaders, OfBareFramesPlayNoLongerThanTheFileCan) {
    constexpr std::uint32_t seed = 20'250'119;
    constexpr double slowestFrame =
        4 * 1024 / 7'350.0 / 8; // seconds in a byte: ADTS of four blocks in 8 bytes
    Random random(seed);
    for (int round = 0; round < 2'000; ++round) {
        const std::size_t side = std::array<std::size_t, 3>{32, 17, 9}.at(random() % 3);
        std::string file = be(0xFFFB9000 | (random() & 0xFF), 4) + zeros(side) + "Xing" + be(15, 4) +
                           word(random) + be(834, 4) + zeros(100) + word(random) + "LAME3.100" + zeros(12) +
                           word(random);
        file.resize(834);
        EXPECT_LE(secondsOf(file), slowestFrame * static_cast<double>(file.size())) << round;
    }
}

} // namespace velmora::test
