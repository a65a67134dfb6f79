#pragma once

// The ribbons drawn without a GPU: column by column, several times faster than QPainter strokes
// and blurs them.

#include "ui/scenery/RibbonSet.h"

#include <QImage>
#include <QRectF>

#include <vector>

namespace velmora {

class RibbonImage {
public:
    /// Draws `ribbons` at `scale` pixels a point. The image covers only the rows that the ribbons and their
    /// glow reach.
    void draw(const RibbonSet& ribbons, double scale);

    const QImage& image() const { return m_image; }

    /// The place of the image in the field, in points.
    QRectF area() const { return m_area; }

private:
    void placeRows(const RibbonSet& ribbons, double scale);
    void gatherGlow(const RibbonSet& ribbons);
    void drawGlow(double scale);
    void drawRibbon(const RibbonSet& ribbons, const RibbonCurve& curve, double scale);

    QImage m_image;
    QRectF m_area;
    int m_columns = 0; ///< points of the glow's grid in a row
    int m_rows = 0;    ///< rows of the glow's grid
    std::vector<AccentMix> m_glow;
};

} // namespace velmora
