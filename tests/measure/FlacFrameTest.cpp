// The headers of FLAC frames: each code of them, and their checksums.

#include "measure/formats/FlacFrame.h"

#include "tests/measure/FlacBytes.h"
#include "tests/measure/MediaBytes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace velmora::test {

namespace {

using namespace std::string_literals;

/// The header of a frame: `codes` of block size and sample rate, a `coded` number, and `extra` bytes for
/// them.
std::string frameHeader(int codes, const std::string& extra, const std::string& coded, int sync) {
    const std::string header = be(0xFF, 1) + be(static_cast<std::uint64_t>(sync), 1) +
                               be(static_cast<std::uint64_t>(codes), 1) + be(0x18, 1) + coded + extra;
    return header + be(flacChecksum(header, 8, 0x07), 1);
}

std::optional<FlacFrame> parsed(const std::string& header, std::int32_t rate) {
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(header.data()), header.size());
    return parseFlacFrame(bytes, {.blockSamples = 4'096, .rate = rate});
}

std::optional<FlacFrame> frameOf(int codes, const std::string& extra, std::int32_t rate = 44'100,
                                 const std::string& coded = "\x05", int sync = 0xF8) {
    return parsed(frameHeader(codes, extra, coded, sync), rate);
}

/// The rate that a frame of no stream states; 0 if it is none.
std::int32_t rateOf(int codes, const std::string& extra) {
    const std::optional<FlacFrame> frame = frameOf(codes, extra, 0);
    return frame ? frame->rate : 0;
}

} // namespace

TEST(FlacFrame, SaysItsSamplesInEachWay) {
    for (const auto& [code, extra, samples] :
         std::vector<std::tuple<int, std::string, std::int64_t>>{{0x1, "", 192},
                                                                 {0x2, "", 576},
                                                                 {0x5, "", 4'608},
                                                                 {0x6, be(99, 1), 100},
                                                                 {0x7, be(9'999, 2), 10'000},
                                                                 {0x8, "", 256},
                                                                 {0xF, "", 32'768}}) {
        const std::optional<FlacFrame> frame = frameOf(code << 4, extra);
        ASSERT_TRUE(frame) << code;
        EXPECT_EQ(frame->samples, samples) << code;
        EXPECT_EQ(frame->firstSample, 5 * 4'096) << code;
    }
    EXPECT_FALSE(frameOf(0, "")) << "a reserved code";
}

TEST(FlacFrame, HasItsRateOrThatOfItsStream) {
    const std::vector<std::int32_t> byCode = {0,      88'200, 176'400, 192'000, 8'000,  16'000,
                                              22'050, 24'000, 32'000,  44'100,  48'000, 96'000};
    for (int code = 1; code < std::ssize(byCode); ++code) {
        const std::int32_t rate = byCode[static_cast<std::size_t>(code)];
        EXPECT_EQ(rateOf(0x10 | code, ""), rate) << code;
    }
    EXPECT_EQ(rateOf(0x1C, be(45, 1)), 45'000);
    EXPECT_EQ(rateOf(0x1D, be(44'057, 2)), 44'057);
    EXPECT_EQ(rateOf(0x1E, be(9'601, 2)), 96'010);
    EXPECT_EQ(frameOf(0x10, "", 12'345)->rate, 12'345) << "of its stream";
    EXPECT_EQ(rateOf(0x1F, ""), 0) << "a forbidden code";
    EXPECT_EQ(rateOf(0x1C, be(0, 1)), 0);
}

TEST(FlacFrame, HasNoReservedBits) {
    for (const auto& [codes, isFrame] :
         {std::pair(0x18, true), {0x16, false}, {0x19, false}, {0xB8, false}}) {
        const std::string header = "\xFF\xF8\x19"s + be(static_cast<std::uint64_t>(codes), 1) + "\x05";
        EXPECT_EQ(parsed(header + be(flacChecksum(header, 8, 0x07), 1), 44'100).has_value(), isFrame)
            << codes;
    }
}

TEST(FlacFrame, IsNumberedLikeTextInUtf8) {
    for (const auto& [coded, number] :
         std::vector<std::pair<std::string, std::int64_t>>{{"\x7F", 0x7F},
                                                           {"\xC2\x80", 0x80},
                                                           {"\xE1\x80\x81", 0x1001},
                                                           {"\xF1\x80\x80\x82", 0x4'0002},
                                                           {"\xF9\x80\x80\x80\x83", 0x100'0003},
                                                           {"\xFD\x80\x80\x80\x80\x84", 0x4000'0004},
                                                           {"\xFE\xBF\xBF\xBF\xBF\xBF\xBF", 0xF'FFFF'FFFF}}) {
        const std::optional<FlacFrame> frame = frameOf(0x10, "", 44'100, coded, 0xF9);
        ASSERT_TRUE(frame) << number;
        EXPECT_EQ(frame->firstSample, number);
    }
    for (const std::string coded : {"\x80", "\xFF", "\xC2\x40", "\xC2\xC0", "\xE1\x80"}) {
        EXPECT_FALSE(frameOf(0x10, "", 44'100, coded, 0xF9));
    }
}

TEST(FlacFrame, IsWholeAndCheckedByItsSum) {
    const std::string header = frameHeader(0x71, be(4'095, 2), "\x05", 0xF8);
    EXPECT_TRUE(parsed(header, 88'200));
    for (std::size_t size = 0; size < header.size(); ++size) {
        EXPECT_FALSE(parsed(header.substr(0, size), 88'200)) << size;
    }
    for (std::size_t bit = 0; bit < 8 * header.size(); ++bit) {
        std::string flipped = header;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ 1 << bit % 8);
        EXPECT_FALSE(parsed(flipped, 88'200)) << bit;
    }
}

} // namespace velmora::test
