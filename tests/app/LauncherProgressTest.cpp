// Progress in the task bar, with a dock on a real session bus.

#include "app/desktop/LauncherProgress.h"

#include "tests/app/SessionBus.h"
#include "tests/support/ComesTrue.h"
#include "tests/window/NewsServices.h"

#include <gmock/gmock.h>

#include <memory>

namespace velmora::test {
namespace {

using testing::Each;
using testing::SizeIs;

class LauncherProgressTest : public testing::Test {
protected:
    /// Whether the last update comes to say so.
    bool comesToShow(double progress) {
        return comesTrue([&] { return dock.showsProgress() && dock.updates.last()["progress"] == progress; });
    }

    SessionBus session;
    Dock dock{SessionBus::services()};
    std::unique_ptr<LauncherProgress> bar = std::make_unique<LauncherProgress>();
};

TEST_F(LauncherProgressTest, IsThatOfTheLauncher) {
    bar->show(0.25);
    EXPECT_TRUE(comesToShow(0.25));
    EXPECT_THAT(dock.launchers, Each("application://com.orventa.Velmora.desktop"));
    bar->show({});
    EXPECT_TRUE(comesTrue([this] { return !dock.showsProgress(); }));
}

TEST_F(LauncherProgressTest, IsToldNowAndThenHoweverOftenItChanges) {
    constexpr int steps = 10'000;
    for (int i = 0; i <= steps; ++i) {
        bar->show(static_cast<double>(i) / steps);
    }
    EXPECT_TRUE(comesToShow(1));
    EXPECT_THAT(dock.updates, SizeIs(2)) << "the first, and the last after a pause";
}

TEST_F(LauncherProgressTest, IsNotToldAgain) {
    bar->show(0.5);
    EXPECT_TRUE(comesToShow(0.5));
    bar->show(0.5);
    bar->show({});
    EXPECT_TRUE(comesTrue([this] { return !dock.showsProgress(); }));
    EXPECT_THAT(dock.updates, SizeIs(2));
}

TEST_F(LauncherProgressTest, GoesWithTheProgramAtOnce) {
    bar->show(0.5);
    bar.reset(); // in the pause
    SessionBus::settle();
    EXPECT_THAT(dock.updates, SizeIs(2));
    EXPECT_FALSE(dock.showsProgress());
}

} // namespace
} // namespace velmora::test
