// The wish to keep the machine awake, with a portal on a real session bus.

#include "app/desktop/SuspendInhibitor.h"

#include "tests/app/SessionBus.h"
#include "tests/window/NewsServices.h"

#include <gtest/gtest.h>

#include <memory>

namespace velmora::test {
namespace {

class SuspendInhibitorTest : public testing::Test {
protected:
    SessionBus session;
    InhibitPortal portal{SessionBus::services()};
    std::unique_ptr<SuspendInhibitor> inhibitor = std::make_unique<SuspendInhibitor>();
};

TEST_F(SuspendInhibitorTest, HoldsUntilItIsReleased) {
    inhibitor->hold("the reason");
    inhibitor->hold("another");
    SessionBus::settle();
    EXPECT_EQ(portal.asked, 1);
    EXPECT_EQ(portal.flags, 4U);
    EXPECT_EQ(portal.options, (QVariantMap{{"reason", "the reason"}}));
    EXPECT_EQ(portal.released, 0);
    inhibitor->release();
    inhibitor->release();
    SessionBus::settle();
    EXPECT_EQ(portal.released, 1);
    inhibitor->hold("again");
    SessionBus::settle();
    EXPECT_EQ(portal.held(), 1);
}

TEST_F(SuspendInhibitorTest, ReleasesAtItsEnd) {
    inhibitor->hold("the reason");
    SessionBus::settle();
    inhibitor.reset();
    SessionBus::settle();
    EXPECT_EQ(portal.asked, 1);
    EXPECT_EQ(portal.released, 1);
}

TEST_F(SuspendInhibitorTest, ReleasesWhatWasNotAnsweredInTime) {
    inhibitor->hold("the reason");
    inhibitor->release();
    inhibitor->hold("another");
    SessionBus::settle();
    EXPECT_EQ(portal.asked, 2);
    EXPECT_EQ(portal.held(), 1);
}

TEST_F(SuspendInhibitorTest, TakesARefusalAsItIs) {
    portal.refuses = true;
    inhibitor->hold("the reason");
    SessionBus::settle();
    inhibitor->release();
    SessionBus::settle();
    EXPECT_EQ(portal.asked, 1);
    EXPECT_EQ(portal.released, 0);
    portal.refuses = false;
    inhibitor->hold("again");
    SessionBus::settle();
    EXPECT_EQ(portal.asked, 2);
}

} // namespace
} // namespace velmora::test
