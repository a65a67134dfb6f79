#include "ui/scenery/RibbonFormula.h"

#include "ui/scenery/Angle.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace velmora {

namespace {

constexpr double leastIntensity = 0.18;

/// A ribbon's three waves at u = 0.
struct Waves {
    explicit Waves(double phase)
        : main(smallAngle(phase))
        , fast(smallAngle(-0.63 * phase))
        , slow(smallAngle(0.21 * phase)) {}

    double swing(double q) const {
        return std::sin(q + main) + 0.34 * std::sin(2.31 * q + fast) + 0.22 * std::sin(0.47 * q + slow);
    }

    double main;
    double fast;
    double slow;
};

/// A sine at equal steps, each turned on from the one before: a tenth of the cost of computing each.
class TurningSine {
public:
    TurningSine(double angle, double step)
        : m_sine(std::sin(angle))
        , m_cosine(std::cos(angle))
        , m_stepSine(std::sin(step))
        , m_stepCosine(std::cos(step)) {}

    double next() {
        const double sine = m_sine;
        m_sine = sine * m_stepCosine + m_cosine * m_stepSine;
        m_cosine = m_cosine * m_stepCosine - sine * m_stepSine;
        return sine;
    }

private:
    double m_sine;
    double m_cosine;
    double m_stepSine;
    double m_stepCosine;
};

double shareOf(std::size_t step, double width) {
    return static_cast<double>(step) * ribbonStep / std::max(width, 1.0);
}

} // namespace

Ribbon ribbon(int k, double height, double intensity, double time) {
    return {
        .amplitude = std::max(intensity, leastIntensity) * 0.14 * height * (1 - 0.15 * k),
        .frequency = 1.05 + 0.62 * k,
        .phase = 1.7 * k + time * (0.42 + 0.31 * k),
        .violetOpacity = 0.55 - 0.3 * (0.25 * k),
        .indigoOpacity = 0.6 - 0.28 * (0.25 * k),
    };
}

double ribbonEnvelope(double u) {
    // Rounding may leave sin(pi) a little below zero.
    return std::pow(std::max(std::sin(std::numbers::pi * u), 0.0), 0.85);
}

double ribbonY(const Ribbon& ribbon, double u, double height) {
    const double q = fullTurn * u * ribbon.frequency;
    return height / 2 + ribbon.amplitude * ribbonEnvelope(u) * Waves(ribbon.phase).swing(q);
}

std::vector<double> ribbonEnvelopes(double width) {
    const auto last = static_cast<std::size_t>(std::max(width, 0.0) / ribbonStep);
    std::vector<double> envelopes(last + 1);
    for (std::size_t step = 0; step < envelopes.size(); ++step) {
        envelopes[step] = ribbonEnvelope(shareOf(step, width));
    }
    return envelopes;
}

std::vector<double> ribbonPath(const Ribbon& ribbon, const std::vector<double>& envelopes, double width,
                               double height) {
    const Waves waves(ribbon.phase);
    const double q = fullTurn * shareOf(1, width) * ribbon.frequency; // from step to step
    TurningSine main(waves.main, q);
    TurningSine fast(waves.fast, 2.31 * q);
    TurningSine slow(waves.slow, 0.47 * q);
    std::vector<double> path(envelopes.size());
    for (std::size_t step = 0; step < path.size(); ++step) {
        const double swing = main.next() + 0.34 * fast.next() + 0.22 * slow.next();
        path[step] = height / 2 + ribbon.amplitude * envelopes[step] * swing;
    }
    return path;
}

} // namespace velmora
