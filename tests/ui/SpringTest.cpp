#include "ui/kit/Spring.h"

#include "tests/ui/UiTest.h"

#include <QTest>

#include <gtest/gtest.h>

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

TEST(SpringMotion, OvershootsAndComesToRest) {
    const auto stretch = [](double seconds) { return springAfter(seconds, {-0.08, 0}, 0.35, 0.6).stretch; };
    EXPECT_LT(stretch(0.1), 0);
    EXPECT_GT(stretch(0.25), 0.005);
    EXPECT_NEAR(stretch(2), 0, 1e-6);
}

class SpringTest : public UiTest {};

TEST_F(SpringTest, IsAsSoftAsDesigned) {
    const Spring spring;
    EXPECT_EQ(spring.property("response"), 0.35);
    EXPECT_EQ(spring.property("dampingFraction"), 0.6);
}

TEST_F(SpringTest, SwingsToItsTargetAndBack) {
    Spring spring;
    spring.setTarget(1);
    EXPECT_EQ(spring.value(), 1) << "the first target is taken over";
    spring.setTarget(1.08);
    EXPECT_NEAR(spring.value(), 1, 1e-6) << "it starts from where it is";
    ASSERT_TRUE(comesTrue([&] { return spring.value() == 1.08; }));
    spring.setTarget(1);
    EXPECT_TRUE(comesTrue([&] { return spring.value() == 1; }));
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
