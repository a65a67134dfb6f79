#include "system/Uuid.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace velmora {

namespace {

TEST(Uuid, HasTheCanonicalFormOfVersion4InUpperCase) {
    const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    for (int i = 0; i < 100; ++i) {
        const std::string uuid = randomUuid();
        EXPECT_TRUE(std::regex_match(uuid, form)) << uuid;
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
