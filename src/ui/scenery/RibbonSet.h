#pragma once

// The five ribbons of one frame, as they are drawn with a GPU and without one.

#include "ui/scenery/RibbonFormula.h"

#include <QSizeF>

#include <array>
#include <cstddef>
#include <vector>

namespace velmora {

/// A premultiplied colour: the sum of violet and indigo, each multiplied by its share here.
struct AccentMix {
    float violet = 0;
    float indigo = 0;
};

/// A ribbon where it crosses one x.
struct RibbonPoint {
    double y = 0;
    double slope = 0; ///< dy / dx
};

struct RibbonCurve {
    Ribbon ribbon;
    std::vector<double> path; ///< the y of every step from the left edge; not empty

    /// Interpolates the path between its steps. Beyond its end it is level.
    RibbonPoint at(double x) const;

    /// The x at which the path ends.
    double end() const { return static_cast<double>(path.size() - 1) * ribbonStep; }
};

struct RibbonSet {
    QSizeF size; ///< points
    std::array<RibbonCurve, ribbonCount> curves;

    static RibbonSet at(const QSizeF& size, double intensity, double time);

    /// Moves the ribbons to where they are at `time`. Cheaper than a new set while the width stays the same.
    void move(const QSizeF& newSize, double intensity, double time);

    /// The colour of the stroke of `curve` at `x`.
    AccentMix color(const RibbonCurve& curve, double x) const;

    /// The brightness of a ribbon's glow on the ribbon itself at `x`, as a share of the stroke's colour.
    /// Computed for a straight line that ends at the field's edges.
    double glowPeak(double x) const;

private:
    std::vector<double> m_envelopes; ///< for the present width
};

} // namespace velmora
