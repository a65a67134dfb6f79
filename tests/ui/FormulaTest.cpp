// The expected numbers were computed from the formulas with another language's mathematics.

#include "ui/scenery/RibbonFormula.h"
#include "ui/scenery/SpectrumFormula.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <ostream>
#include <string>

namespace velmora {
namespace {

constexpr double summer2026 = 812'000'000; // seconds since 2001

/// The formula of a ribbon, written out: its y at the share `u` of the width, in a field `height` points
/// high. Phases are reduced first: those of today are so large that a sum with them would be rounded too far.
double ribbonY(const Ribbon& line, double u, double height) {
    const double q = 2 * std::numbers::pi * u * line.frequency;
    const double envelope = std::pow(std::sin(std::numbers::pi * u), 0.85);
    const auto sine = [&](double frequency, double phase) {
        return std::sin(frequency * q + std::remainder(phase * line.phase, 2 * std::numbers::pi));
    };
    const double swing = sine(1, 1) + 0.34 * sine(2.31, -0.63) + 0.22 * sine(0.47, 0.21);
    return height / 2 + line.amplitude * envelope * swing;
}

std::vector<double> pathOf(const Ribbon& line, double width, double height) {
    return ribbonPath(line, ribbonEnvelopes(width), width, height);
}

struct RibbonCase {
    std::string name;
    int k;
    double height;
    double intensity;
    double time;
    double u;
    double y;
};

std::ostream& operator<<(std::ostream& out, const RibbonCase& row) {
    return out << row.name;
}

class RibbonValues : public testing::TestWithParam<RibbonCase> {};

TEST_P(RibbonValues, FollowTheFormula) {
    const RibbonCase& row = GetParam();
    const Ribbon line = ribbon(row.k, row.height, row.intensity, row.time);
    constexpr double width = 1000;
    const auto step = static_cast<std::size_t>(std::lround(row.u * width / ribbonStep));
    EXPECT_NEAR(pathOf(line, width, row.height).at(step), row.y, 1e-4);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RibbonValues,
    testing::Values(RibbonCase{"FirstAtTheEpoch", 0, 660, 0.44, 0, 0.25, 358.470770114},
                    RibbonCase{"FirstToday", 0, 660, 1.0, summer2026, 0.50, 415.898159844},
                    RibbonCase{"Third", 2, 660, 0.74, 12.5, 0.10, 307.858209926},
                    RibbonCase{"LastInALowField", 4, 400, 1.0, 3.25, 0.70, 208.696015149},
                    RibbonCase{"LastToday", 4, 660, 0.3, summer2026, 0.35, 338.551155342},
                    RibbonCase{"WithoutIntensity", 3, 660, 0.0, 7, 0.90, 327.309133215}),
    [](const testing::TestParamInfo<RibbonCase>& row) { return row.param.name; });

TEST(RibbonFormula, MakesTheLastRibbonTheFaintestAndFlattest) {
    const Ribbon first = ribbon(0, 660, 1, 0);
    const Ribbon last = ribbon(4, 660, 1, 0);
    EXPECT_NEAR(first.violetOpacity, 0.55, 1e-12);
    EXPECT_NEAR(first.indigoOpacity, 0.60, 1e-12);
    EXPECT_NEAR(last.violetOpacity, 0.25, 1e-12);
    EXPECT_NEAR(last.indigoOpacity, 0.32, 1e-12);
    EXPECT_NEAR(last.amplitude / first.amplitude, 0.4, 1e-12);
    EXPECT_NEAR(first.amplitude, 0.14 * 660, 1e-9);
}

TEST(RibbonFormula, TakesAnIntensityOfAtLeast018) {
    EXPECT_EQ(ribbon(1, 500, 0, 3).amplitude, ribbon(1, 500, 0.18, 3).amplitude);
    EXPECT_LT(ribbon(1, 500, 0.18, 3).amplitude, ribbon(1, 500, 0.19, 3).amplitude);
}

TEST(RibbonFormula, StepsEveryTwoAndAHalfPointsAsFarAsTheWidth) {
    const Ribbon line = ribbon(0, 100, 1, 0);
    EXPECT_EQ(pathOf(line, 10, 100).size(), 5U); // 0, 2.5, 5, 7.5, 10
    EXPECT_EQ(pathOf(line, 12.4, 100).size(), 5U);
    EXPECT_EQ(pathOf(line, 12.5, 100).size(), 6U);
    EXPECT_NEAR(pathOf(line, 10, 100)[2], ribbonY(line, 0.5, 100), 1e-9);
}

TEST(RibbonFormula, FollowsTheFormulaToTheEndOfAWidePath) {
    for (const double time : {0.0, 12.5, summer2026}) {
        const Ribbon line = ribbon(4, 1400, 1, time);
        const std::vector<double> path = pathOf(line, 5000, 1400);
        for (std::size_t step = 0; step < path.size(); step += 97) {
            EXPECT_NEAR(path[step], ribbonY(line, static_cast<double>(step) * 2.5 / 5000, 1400), 1e-9);
        }
    }
}

TEST(RibbonFormula, TapersToTheMiddleAtBothEnds) {
    const std::vector<double> path = pathOf(ribbon(2, 660, 1, summer2026), 940, 660);
    EXPECT_NEAR(path.front(), 330, 1e-6);
    EXPECT_NEAR(path.back(), 330, 1e-6);
}

TEST(RibbonFormula, DrawsAFieldWithoutWidth) {
    const std::vector<double> path = pathOf(ribbon(0, 660, 1, 5), 0, 660);
    ASSERT_EQ(path.size(), 1U);
    EXPECT_TRUE(std::isfinite(path.front()));
}

struct BarCase {
    std::string name;
    double width;
    double height;
    double intensity;
    double time;
    std::size_t i;
    Bar expected;
};

std::ostream& operator<<(std::ostream& out, const BarCase& row) {
    return out << row.name;
}

class BarValues : public testing::TestWithParam<BarCase> {};

TEST_P(BarValues, FollowTheFormula) {
    const BarCase& row = GetParam();
    const std::vector<Bar> bars = spectrumBars(row.width, row.height, row.intensity, row.time);
    ASSERT_LT(row.i, bars.size());
    EXPECT_DOUBLE_EQ(bars[row.i].x, row.expected.x);
    EXPECT_NEAR(bars[row.i].height, row.expected.height, 1e-4);
    EXPECT_NEAR(bars[row.i].blend, row.expected.blend, 1e-9);
    EXPECT_NEAR(bars[row.i].opacity, row.expected.opacity, 1e-5);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BarValues,
    testing::Values(BarCase{"FirstAtTheEpoch", 888, 34, 0.44, 0, 0, {0, 6.12, 0, 0.3}},
                    BarCase{"SecondAtTheEpoch", 888, 34, 1.0, 0, 1, {7, 7.049608162, 0.008, 0.318338755}},
                    BarCase{"Inner", 888, 34, 0.74, 12.5, 60, {420, 7.081248636, 0.48, 0.325625594}},
                    BarCase{"LastToday", 888, 34, 1.0, summer2026, 125, {875, 16.537728143, 1, 0.505514723}},
                    BarCase{"TheOnlyOne", 7, 34, 1.0, 2, 0, {0, 10.394176049, 0, 0.384318394}},
                    BarCase{"OneOfTwo", 14, 34, 0.3, 2, 1, {7, 7.293455391, 1, 0.377164092}},
                    BarCase{"WithoutIntensity", 888, 34, 0.0, 5, 33, {231, 6.710912497, 0.264, 0.372857307}},
                    BarCase{"NeverBelowTwoPoints", 888, 5, 0.0, 5, 33, {231, 2, 0.264, 0.372857307}}),
    [](const testing::TestParamInfo<BarCase>& row) { return row.param.name; });

TEST(SpectrumFormula, HasNoBarsInAStripNarrowerThanSevenPoints) {
    EXPECT_THAT(spectrumBars(6.9, 34, 1, 0), testing::IsEmpty());
    EXPECT_THAT(spectrumBars(0, 34, 1, 0), testing::IsEmpty());
    EXPECT_EQ(spectrumBars(7, 34, 1, 0).size(), 1U);
    EXPECT_EQ(spectrumBars(20.9, 34, 1, 0).size(), 2U);
}

TEST(SpectrumFormula, MovesWithoutIntensityAsWith016) {
    bool moved = false;
    for (double time = 0; time < 3; time += 0.1) {
        const std::vector<Bar> still = spectrumBars(400, 34, 0, time);
        const std::vector<Bar> weakest = spectrumBars(400, 34, 0.16, time);
        for (std::size_t i = 0; i < still.size(); ++i) {
            EXPECT_EQ(still[i].height, weakest[i].height);
            EXPECT_GE(still[i].height, 0.18 * 34 - 1e-9);
            moved = moved || still[i].height > 0.2 * 34;
        }
    }
    EXPECT_TRUE(moved);
}

} // namespace
} // namespace velmora
