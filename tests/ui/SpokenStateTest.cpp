// The states and values that assistive technology reads.

#include "tests/ui/UiTest.h"

#include <QAccessible>

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using Phase = ScanModel::Phase;

class SpokenStateTest : public UiTest {
protected:
    QAccessibleInterface* accessible(const char* name) {
        return QAccessible::queryAccessibleInterface(find(name));
    }
};

TEST_F(SpokenStateTest, HasTheProgressAsAValue) {
    scan.show({.phase = Phase::scanning, .processed = 2, .found = 8, .progress = 0.25});
    openWindow();
    QAccessibleValueInterface* value = accessible("progressBar")->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->minimumValue(), 0);
    EXPECT_EQ(value->maximumValue(), 1);
    EXPECT_EQ(value->currentValue(), 0.25);
    scan.show({.phase = Phase::scanning, .processed = 8, .found = 8, .progress = 1});
    EXPECT_EQ(value->currentValue(), 1);
}

TEST_F(SpokenStateTest, OffersTheFocusOfControlsOnly) {
    ScanState state = done;
    state.zip = ZipFailed{"no"};
    scan.show(state);
    openWindow();
    for (const char* label : {"wordmark", "pillWords", "totalClock", "totalWords", "zipLine"}) {
        EXPECT_FALSE(accessible(label)->state().focusable) << label;
    }
    EXPECT_FALSE(accessible("zipStatus")->state().focusable) << "it is no button yet";
    EXPECT_TRUE(accessible("zipButton")->state().focusable);
    state.zip = ZipDone{"/music/a.zip"};
    scan.show(state);
    EXPECT_TRUE(accessible("zipStatus")->state().focusable) << "it is a button now";
}

} // namespace
} // namespace velmora::test
