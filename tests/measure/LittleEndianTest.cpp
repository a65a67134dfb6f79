#include "measure/bytes/ByteOrder.h"

#include <gtest/gtest.h>

#include <array>

namespace velmora::HeaderDuration {

namespace {

constexpr std::array<std::uint8_t, 9> bytes = {0xF1, 0x02, 0x83, 0x04, 0x05, 0x06, 0x07, 0x88, 0x09};

} // namespace

TEST(LittleEndian, TakesTheLowestByteFirst) {
    EXPECT_EQ(le16(bytes, 0), 0x02F1);
    EXPECT_EQ(le32(bytes, 0), 0x048302F1U);
    EXPECT_EQ(le64(bytes, 0), 0x88070605048302F1U);
}

TEST(LittleEndian, ReadsAtAnyIndexUpToTheEnd) {
    EXPECT_EQ(le16(bytes, 7), 0x0988);
    EXPECT_EQ(le32(bytes, 5), 0x09880706U);
    EXPECT_EQ(le64(bytes, 1), 0x0988070605048302U);
}

TEST(LittleEndianDeathTest, StopsTheProgramBeyondTheEnd) {
    EXPECT_DEATH(le16(bytes, 8), "");
    EXPECT_DEATH(le32(bytes, 6), "");
    EXPECT_DEATH(le64(bytes, 2), "");
    EXPECT_DEATH(le64(bytes, SIZE_MAX), "");
    EXPECT_DEATH(le32({}, 0), "");
}

} // namespace velmora::HeaderDuration
