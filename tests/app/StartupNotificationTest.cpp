#include "app/desktop/StartupNotification.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(StartupNotification, KnowsTheTimeOfAStart) {
    EXPECT_EQ(timeOfStartup("desktop/velmora/7-0-host_TIME4294967295"), 4'294'967'295U);
    EXPECT_EQ(timeOfStartup("odd_TIME5_TIME7"), 7U) << "the last one counts";
    for (const char* id : {"", "token", "id_TIME", "id_TIME-1", "id_TIME4294967296", "id_TIMEx"}) {
        EXPECT_EQ(timeOfStartup(id), 0U) << id;
    }
}

} // namespace
} // namespace velmora::test
