#include "ui/scenery/RibbonFormula.h"

#include "ui/scenery/Angle.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace velmora {

namespace {

constexpr double minIntensity = 0.18;

/// The second and the third sine of a ribbon: frequency and strength relative to the first one's, and how
/// their phases change with its phase.
constexpr double fastFrequency = 2.31;
constexpr double fastStrength = 0.34;
constexpr double fastPhase = -0.63;
constexpr double slowFrequency = 0.47;
constexpr double slowStrength = 0.22;
constexpr double slowPhase = 0.21;

constexpr double envelopePower = 0.85;

/// The sines of angles that grow by equal steps, each computed from the one before by the addition theorem:
/// at a tenth of the cost of a call of `std::sin` for each.
class SineSequence {
public:
    SineSequence(double angle, double step)
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

/// The x of a step, as a share of the width.
double shareOf(std::size_t step, double width) {
    return static_cast<double>(step) * ribbonStep / std::max(width, 1.0);
}

double envelope(double share) {
    // Rounding may make sin(pi) slightly negative.
    return std::pow(std::max(std::sin(std::numbers::pi * share), 0.0), envelopePower);
}

} // namespace

Ribbon ribbon(int k, double height, double intensity, double time) {
    return {
        .amplitude = std::max(intensity, minIntensity) * 0.14 * height * (1 - 0.15 * k),
        .frequency = 1.05 + 0.62 * k,
        .phase = 1.7 * k + time * (0.42 + 0.31 * k),
        .violetOpacity = 0.55 - 0.3 * (0.25 * k),
        .indigoOpacity = 0.6 - 0.28 * (0.25 * k),
    };
}

std::vector<double> ribbonEnvelopes(double width) {
    const auto last = static_cast<std::size_t>(std::max(width, 0.0) / ribbonStep);
    std::vector<double> envelopes(last + 1);
    for (std::size_t step = 0; step < envelopes.size(); ++step) {
        envelopes[step] = envelope(shareOf(step, width));
    }
    return envelopes;
}

std::vector<double> ribbonPath(const Ribbon& ribbon, const std::vector<double>& envelopes, double width,
                               double height) {
    const double turn = fullTurn * shareOf(1, width) * ribbon.frequency; // radians from step to step
    SineSequence main(smallAngle(ribbon.phase), turn);
    SineSequence fast(smallAngle(fastPhase * ribbon.phase), fastFrequency * turn);
    SineSequence slow(smallAngle(slowPhase * ribbon.phase), slowFrequency * turn);
    std::vector<double> path(envelopes.size());
    for (std::size_t step = 0; step < path.size(); ++step) {
        const double swing = main.next() + fastStrength * fast.next() + slowStrength * slow.next();
        path[step] = height / 2 + ribbon.amplitude * envelopes[step] * swing;
    }
    return path;
}

} // namespace velmora
