#pragma once

// The ribbons drawn without a GPU: by hand, column by column, several times faster than a general stroker.

#include "ui/scenery/RibbonSet.h"

#include <QImage>
#include <QRectF>

#include <vector>

namespace velmora {

class RibbonImage {
public:
    /// Draws `ribbons` at `scale` pixels a point. Only the rows that hold something are drawn.
    void draw(const RibbonSet& ribbons, double scale);

    const QImage& image() const { return m_image; }

    /// Where the image stands in the field, in points.
    QRectF area() const { return m_area; }

private:
    void placeRows(const RibbonSet& ribbons, double scale);
    void gatherGlow(const RibbonSet& ribbons);
    void drawGlow(double scale);
    void drawRibbon(const RibbonSet& ribbons, const RibbonCurve& curve, double scale);

    QImage m_image;
    QRectF m_area;
    int m_columns = 0; ///< of the glow's coarse grid
    int m_rows = 0;
    std::vector<AccentMix> m_glow;
};

} // namespace velmora
