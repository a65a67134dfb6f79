#include "update/Version.h"

#include "tests/support/NamedRow.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

struct VersionRow : NamedRow {
    const char* a;
    const char* b;
    bool newer;
};

class Version : public testing::TestWithParam<VersionRow> {};

TEST_P(Version, IsComparedNumberByNumber) {
    EXPECT_EQ(UpdateChecker::isNewer(GetParam().a, GetParam().b), GetParam().newer);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(UpdateChecker, Version, testing::Values(
    VersionRow{"NumbersNotText",          "1.10",                  "1.9",     true},
    VersionRow{"TheOtherWayRound",        "1.9",                   "1.10",    false},
    VersionRow{"MissingNumbersAreZero",   "1.2.0",                 "1.2",     false},
    VersionRow{"FewerNumbersMayBeNewer",  "2",                     "1.9.9",   true},
    VersionRow{"AFurtherNumberIsNewer",   "1.0.1",                 "1",       true},
    VersionRow{"WhatIsNoNumberIsZero",    "1.x",                   "1.0",     false},
    VersionRow{"AMixedPieceIsZero",       "1.2-beta",              "1.0",     false},
    VersionRow{"AMixedPieceIsOlder",      "1.2b",                  "1.1",     false},
    VersionRow{"ABlankMakesNoNumber",     "1.2 ",                  "1.0",     false},
    VersionRow{"EmptyPiecesAreDropped",   "1..2",                  "1.1",     true},
    VersionRow{"DotsAtTheEndsAddNothing", ".1.2.",                 "1.2",     false},
    VersionRow{"APlusSignIsAccepted",     "+2",                    "1",       true},
    VersionRow{"AMinusSignIsAccepted",    "-1",                    "0",       false},
    VersionRow{"NegativeIsOlderThanZero", "0",                     "-1",      true},
    VersionRow{"TwoSignsAreNoNumber",     "+-9",                   "0",       false},
    VersionRow{"TooLargeIsNoNumber",      "9223372036854775808",   "1",       false},
    VersionRow{"LargestNumber",           "9223372036854775807",   "1",       true},
    VersionRow{"NothingIsZero",           "",                      "0",       false},
    VersionRow{"Equal",                   "1.2.3",                 "1.2.3",   false}),
    &rowName<VersionRow>);
// clang-format on

} // namespace
} // namespace velmora::test
