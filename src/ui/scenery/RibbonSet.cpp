#include "ui/scenery/RibbonSet.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace velmora {

RibbonPoint RibbonCurve::at(double x) const {
    const double step = std::max(x, 0.0) / ribbonStep;
    const auto index = static_cast<std::size_t>(step);
    if (index + 1 >= path.size()) {
        return {path.back(), 0};
    }
    const double rise = path[index + 1] - path[index];
    return {path[index] + rise * (step - static_cast<double>(index)), rise / ribbonStep};
}

RibbonSet RibbonSet::at(const QSizeF& size, double intensity, double time) {
    RibbonSet ribbons;
    ribbons.move(size, intensity, time);
    return ribbons;
}

void RibbonSet::move(const QSizeF& newSize, double intensity, double time) {
    if (m_envelopes.empty() || newSize.width() != size.width()) {
        m_envelopes = ribbonEnvelopes(newSize.width());
    }
    size = newSize;
    for (int k = 0; k < ribbonCount; ++k) {
        RibbonCurve& curve = curves[static_cast<std::size_t>(k)];
        curve.ribbon = ribbon(k, size.height(), intensity, time);
        curve.path = ribbonPath(curve.ribbon, m_envelopes, size.width(), size.height());
    }
}

AccentMix RibbonSet::color(const RibbonCurve& curve, double x) const {
    const double indigo = 1 - std::abs(2 * x / std::max(size.width(), 1.0) - 1);
    return {
        .violet = static_cast<float>(curve.ribbon.violetOpacity * (1 - indigo)),
        .indigo = static_cast<float>(curve.ribbon.indigoOpacity * indigo),
    };
}

double RibbonSet::glowPeak(double x) const {
    const double peak = ribbonWidth / (ribbonGlowRadius * std::sqrt(2 * std::numbers::pi));
    const auto covered = [](double distance) {
        return 0.5 * std::erf(distance / (ribbonGlowRadius * std::numbers::sqrt2));
    };
    return peak * (covered(x) + covered(size.width() - x));
}

} // namespace velmora
