#include "records/DisplayFormat.h"

#include "tests/support/NamedRow.h"

#include <gtest/gtest.h>

#include <limits>

namespace velmora::test {
namespace {

struct DurationRow : NamedRow {
    double seconds;
    const char* clock;
    const char* words;
};

class Duration : public testing::TestWithParam<DurationRow> {};

TEST_P(Duration, ReadsAsClockAndInWords) {
    EXPECT_EQ(hms(GetParam().seconds), GetParam().clock);
    EXPECT_EQ(longForm(GetParam().seconds), GetParam().words);
}

INSTANTIATE_TEST_SUITE_P(DisplayFormat, Duration,
                         testing::Values(
                             // clang-format off
    DurationRow{"Zero",                 0,       "00:00:00",  "0 sec"},
    DurationRow{"JustBelowHalf",        0.49,    "00:00:00",  "0 sec"},
    DurationRow{"HalfRoundsUp",         0.5,     "00:00:01",  "1 sec"},
    DurationRow{"RoundsDown",           59.4,    "00:00:59",  "59 sec"},
    DurationRow{"RoundsIntoMinute",     59.5,    "00:01:00",  "1 min  0 sec"},
    DurationRow{"Minute",               60,      "00:01:00",  "1 min  0 sec"},
    DurationRow{"RoundsIntoHour",       3599.6,  "01:00:00",  "1 hr  0 sec"},
    DurationRow{"Hour",                 3600,    "01:00:00",  "1 hr  0 sec"},
    DurationRow{"HourWithoutMinutes",   3605,    "01:00:05",  "1 hr  5 sec"},
    DurationRow{"AllParts",             3725.4,  "01:02:05",  "1 hr  2 min  5 sec"},
    DurationRow{"WholeHours",           7200,    "02:00:00",  "2 hr  0 sec"},
    DurationRow{"HoursAndMinute",       7260,    "02:01:00",  "2 hr  1 min  0 sec"},
    DurationRow{"MoreThanADay",         90061,   "25:01:01",  "25 hr  1 min  1 sec"},
    DurationRow{"ThreeDigitHours",      360000,  "100:00:00", "100 hr  0 sec"},
    DurationRow{"Negative",             -5,      "00:00:00",  "0 sec"},
    DurationRow{"NegativeHalf",         -0.5,    "00:00:00",  "0 sec"}),
                         // clang-format on
                         &rowName<DurationRow>);

TEST(DisplayFormatDeathTest, StopsTheProgramOnWhatNoClockCanShow) {
    for (const double seconds :
         {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN(), 9223372036854775808.0}) {
        EXPECT_DEATH(hms(seconds), "64-bit seconds");
        EXPECT_DEATH(longForm(seconds), "64-bit seconds");
    }
}

TEST(DisplayFormat, ClampsWhatAHostileFileStates) {
    EXPECT_EQ(displayable(12.5), 12.5);
    EXPECT_EQ(hms(displayable(1e19)), hms(4611686018427387904.0));
    EXPECT_EQ(hms(displayable(std::numeric_limits<double>::infinity())), "1281023894007607:45:04");
}

struct SizeRow : NamedRow {
    std::int64_t bytes;
    const char* text;
};

class Size : public testing::TestWithParam<SizeRow> {};

TEST_P(Size, ReadsInDecimalUnits) {
    EXPECT_EQ(prettyBytes(GetParam().bytes), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    DisplayFormat, Size,
    testing::Values(
        // clang-format off
    SizeRow{"Nothing",            0,                      "Zero KB"},
    SizeRow{"OneByte",            1,                      "1 byte"},
    SizeRow{"LastInBytes",        999,                    "999 bytes"},
    SizeRow{"FirstInKB",          1000,                   "1 KB"},
    SizeRow{"KBRoundsUp",         1500,                   "2 KB"},
    SizeRow{"LastInKB",           999499,                 "999 KB"},
    SizeRow{"RoundsToOneMB",      999500,                 "1 MB"},
    SizeRow{"OneDecimalForMB",    1500000,                "1.5 MB"},
    SizeRow{"WholeMB",            2000000,                "2 MB"},
    SizeRow{"LastInMB",           999949999,              "999.9 MB"},
    SizeRow{"RoundsToOneGB",      999950000,              "1 GB"},
    SizeRow{"TwoDecimalsForGB",   1234567890,             "1.23 GB"},
    SizeRow{"ZeroInFirstDecimal", 1050000000,             "1.05 GB"},
    SizeRow{"TrailingZeroGoes",   1287000000 + 13000000,  "1.3 GB"},
    SizeRow{"TB",                 2500000000000,          "2.5 TB"},
    SizeRow{"PB",                 3010000000000000,       "3.01 PB"},
    SizeRow{"Largest",            9223372036854775807,    "9.22 EB"},
    SizeRow{"Negative",           -1500000,               "-1.5 MB"}),
    // clang-format on
    &rowName<SizeRow>);

} // namespace
} // namespace velmora::test
