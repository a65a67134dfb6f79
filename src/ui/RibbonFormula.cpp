#include "ui/RibbonFormula.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace velmora {

namespace {

constexpr double leastIntensity = 0.18;
constexpr double turn = 2 * std::numbers::pi;

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
    const double q = turn * u * ribbon.frequency;
    const double p = ribbon.phase;
    const double swing =
        std::sin(q + p) + 0.34 * std::sin(2.31 * q - 0.63 * p) + 0.22 * std::sin(0.47 * q + 0.21 * p);
    return height / 2 + ribbon.amplitude * ribbonEnvelope(u) * swing;
}

std::vector<double> ribbonPath(const Ribbon& ribbon, double width, double height) {
    std::vector<double> path;
    const int last = static_cast<int>(std::floor(std::max(width, 0.0) / ribbonStep));
    for (int step = 0; step <= last; ++step) {
        path.push_back(ribbonY(ribbon, step * ribbonStep / std::max(width, 1.0), height));
    }
    return path;
}

} // namespace velmora
