#include "ui/scenery/SpectrumFormula.h"

#include "ui/scenery/Angle.h"

#include <algorithm>
#include <cmath>

namespace velmora {

namespace {

constexpr double minStrength = 0.16;
constexpr double minHeight = 2; // points

int barCount(double width) {
    return static_cast<int>(width / barPitch);
}

} // namespace

double roomAfterBars(double width) {
    const int count = barCount(width);
    return count < 1 ? width : width - barPitch * (count - 1) - barWidth;
}

std::vector<Bar> spectrumBars(double width, double height, double intensity, double time) {
    const int count = barCount(width);
    const double shares = std::max(count, 2) - 1;
    const double strength = std::max(intensity, minStrength);
    const double a = smallAngle(1.1 * time);
    const double b = smallAngle(1.9 * time);
    const double c = smallAngle(3.2 * time);
    std::vector<Bar> bars;
    for (int i = 0; i < count; ++i) {
        const double u = i / shares;
        const double m = std::abs(std::sin(b + 9.1 * u) * std::cos(4.3 * u - a));
        const double s = 0.35 + 0.65 * std::abs(std::sin(c + 21 * u));
        const double e = m * s;
        bars.push_back({
            .x = barPitch * i,
            .height = std::max(minHeight, height * (strength * 0.82 * e + 0.18)),
            .blend = u,
            .opacity = 0.3 + 0.55 * e,
        });
    }
    return bars;
}

} // namespace velmora
