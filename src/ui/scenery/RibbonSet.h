#pragma once

// The five ribbons of one frame, as both back ends draw them.

#include "ui/scenery/RibbonFormula.h"

#include <QSizeF>

#include <array>
#include <cstddef>
#include <vector>

namespace velmora {

/// A colour of two parts, premultiplied: so much of opaque violet plus so much of opaque indigo.
struct AccentMix {
    float violet = 0;
    float indigo = 0;
};

/// A ribbon where it crosses one x.
struct RibbonPoint {
    double y = 0;
    double slope = 0; ///< points down a point to the right
};

struct RibbonCurve {
    Ribbon ribbon;
    std::vector<double> path; ///< the y of every step from the left edge; not empty

    /// The path between its steps; beyond its end it goes on level.
    RibbonPoint at(double x) const;

    /// Where the path ends.
    double end() const { return static_cast<double>(path.size() - 1) * ribbonStep; }
};

struct RibbonSet {
    QSizeF size; ///< points
    std::array<RibbonCurve, ribbonCount> curves;

    static RibbonSet at(const QSizeF& size, double intensity, double time);

    /// Moves the ribbons to where they are `at` that time. Cheaper than a new ribbons while the width stays.
    void move(const QSizeF& newSize, double intensity, double time);

    /// The colour of the stroke of `curve` at `x`.
    AccentMix color(const RibbonCurve& curve, double x) const;

    /// How bright the glow of a ribbon is on the ribbon itself at `x`, as a share of the stroke's colour:
    /// that of a straight line that ends at the field's edges.
    double glowPeak(double x) const;

private:
    std::vector<double> m_envelopes; ///< for the present width
};

} // namespace velmora
