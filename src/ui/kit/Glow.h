#pragma once

// Soft light and shadow: a shape blurred with a Gaussian. A blur of radius r is one of standard deviation r,
// in points.

#include <QColor>
#include <QRectF>

#include <functional>
#include <vector>

class QPainter;

namespace velmora {

/// A picture of coverage, from 0 to 1, row by row from the top.
struct CoverageMap {
    int width = 0;
    int height = 0;
    std::vector<float> values;
};

/// Blurs `map` with a Gaussian of standard deviation `sigma` pixels. Outside the map there is nothing.
void blur(CoverageMap& map, double sigma);

/// The distance from a shape at which a blur of `radius` is still visible, in the same unit.
double blurReach(double radius);

/// Paints what `shape` paints within `bounds`, with `tint` as its colour, blurred with `radius`; `copies`
/// times, one over the other. Lengths are points of `painter`.
void drawBlurred(QPainter& painter, const QRectF& bounds, double radius, const QColor& tint, int copies,
                 const std::function<void(QPainter& painter)>& shape);

} // namespace velmora
