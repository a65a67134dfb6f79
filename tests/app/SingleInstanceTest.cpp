// What a second start hands to the first where there is no session bus.

#include "app/desktop/SingleInstance.h"

#include "tests/support/ComesTrue.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <vector>

namespace velmora::test {
namespace {

class SingleInstanceTest : public testing::Test {
protected:
    SingleInstanceTest() {
        const fs::path runtime = freshFolder();
        fs::permissions(runtime, fs::perms::owner_all);
        qputenv("XDG_RUNTIME_DIR", runtime.c_str());
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
        QObject::connect(&first, &SingleInstance::requested,
                         [this](const LaunchRequest& request) { requests.push_back(request); });
    }

    std::vector<LaunchRequest> requests;
    SingleInstance first;
    SingleInstance second;
};

TEST_F(SingleInstanceTest, HandsOverAllThatAStartAsksFor) {
    ASSERT_TRUE(first.claim(LaunchRequest{}));
    const Paths paths = {"/m/\xE9 \xC3\xA9\n.wav", "/m/set"};
    EXPECT_FALSE(
        second.claim(LaunchRequest{.paths = paths, .choose = true, .activationToken = "token_TIME7"}));
    ASSERT_TRUE(comesTrue([this] { return !requests.empty(); }));
    EXPECT_EQ(requests.front().paths, paths);
    EXPECT_TRUE(requests.front().choose);
    EXPECT_EQ(requests.front().activationToken, "token_TIME7");
}

TEST_F(SingleInstanceTest, HandsOverAStartThatAsksForNothing) {
    ASSERT_TRUE(first.claim(LaunchRequest{}));
    EXPECT_FALSE(second.claim(LaunchRequest{}));
    ASSERT_TRUE(comesTrue([this] { return !requests.empty(); }));
    EXPECT_TRUE(requests.front().paths.empty());
    EXPECT_FALSE(requests.front().choose);
    EXPECT_EQ(requests.front().activationToken, "");
}

TEST_F(SingleInstanceTest, LeavesTheFirstAloneWhereTheBusIsToAsk) {
    ASSERT_TRUE(first.claim(std::nullopt));
    EXPECT_FALSE(second.claim(std::nullopt));
    EXPECT_FALSE(SingleInstance().claim(LaunchRequest{.choose = true}));
    ASSERT_TRUE(comesTrue([this] { return !requests.empty(); }));
    EXPECT_TRUE(requests.front().choose) << "the one before it asked for nothing";
    EXPECT_EQ(requests.size(), 1U);
}

} // namespace
} // namespace velmora::test
