#include "ui/kit/Spring.h"

#include "tests/ui/UiTest.h"

#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <numbers>

namespace velmora::test {
namespace {

/// The spring's equation solved in small steps.
SpringMotion stepped(double seconds, SpringMotion motion, double response, double dampingFraction) {
    const double undamped = 2 * std::numbers::pi / response;
    constexpr double step = 1e-6;
    for (double t = 0; t < seconds; t += step) {
        const double pull =
            -undamped * undamped * motion.stretch - 2 * dampingFraction * undamped * motion.speed;
        motion.speed += pull * step;
        motion.stretch += motion.speed * step;
    }
    return motion;
}

TEST(SpringMotion, SolvesTheSpringsEquation) {
    for (const SpringMotion& start : {SpringMotion{-0.08, 0}, SpringMotion{0.05, 1.2}}) {
        for (const double seconds : {0.05, 0.2, 0.5}) {
            const SpringMotion exact = springAfter(seconds, start, 0.35, 0.6);
            const SpringMotion expected = stepped(seconds, start, 0.35, 0.6);
            EXPECT_NEAR(exact.stretch, expected.stretch, 1e-5);
            EXPECT_NEAR(exact.speed, expected.speed, 1e-3);
        }
    }
}

class SpringTest : public UiTest {};

TEST_F(SpringTest, SwingsToItsTargetAndBack) {
    Spring spring;
    spring.setTarget(1);
    EXPECT_EQ(spring.value(), 1) << "the first target is taken over";
    double highest = 0;
    QObject::connect(&spring, &Spring::valueChanged, [&] { highest = std::max(highest, spring.value()); });
    spring.setTarget(1.08);
    EXPECT_NEAR(spring.value(), 1, 1e-6) << "it starts from where it is";
    ASSERT_TRUE(QTest::qWaitFor([&] { return spring.value() == 1.08; }));
    EXPECT_GT(highest, 1.08) << "it overshoots";
    spring.setTarget(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return spring.value() == 1; }));
}

TEST_F(SpringTest, JumpsWhenMotionIsUnwanted) {
    Spring spring;
    spring.setProperty("animated", false);
    spring.setTarget(1);
    spring.setTarget(1.08);
    EXPECT_EQ(spring.value(), 1.08);
}

} // namespace
} // namespace velmora::test
