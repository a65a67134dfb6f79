#include "system/Uuid.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace velmora {

namespace {

TEST(Uuid, HasTheCanonicalFormOfVersion4InUpperCase) {
    for (int i = 0; i < 100; ++i) {
        EXPECT_THAT(randomUuid(), testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-"
                                                        "[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
    }
}

TEST(Uuid, IsNeverTheSameTwice) {
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        seen.insert(randomUuid());
    }
    EXPECT_EQ(seen.size(), 1000U);
}

} // namespace

} // namespace velmora
