#include "ui/panel/PanelGlyph.h"

#include "ui/kit/Neon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

namespace velmora {

namespace {

/// The sign in a box from (-7, -7) to (7, 7). Horizontal and vertical lines run through the middles of
/// pixels, so that they are sharp.
QPainterPath lines(PanelGlyph::Sign sign) {
    QPainterPath path;
    const auto line = [&path](const QPolygonF& points) { path.addPolygon(points); };
    switch (sign) {
    case PanelGlyph::Folder:
        line({{-5.5, 4.5},
              {-5.5, -3.5},
              {-4.5, -4.5},
              {-1.5, -4.5},
              {0, -2.5},
              {5.5, -2.5},
              {5.5, 4.5},
              {-5.5, 4.5}});
        break;
    case PanelGlyph::Audio: // a level that rises and falls
        line({{-5.5, -0.5}, {-5.5, 1.5}});
        line({{-2.5, -3.5}, {-2.5, 4.5}});
        line({{0.5, -5.5}, {0.5, 5.5}});
        line({{3.5, -2.5}, {3.5, 3.5}});
        line({{6, -0.5}, {6, 1.5}});
        break;
    case PanelGlyph::Archive: // a box with a lid and a label
        line({{-5.5, -4.5}, {5.5, -4.5}, {5.5, -1.5}, {-5.5, -1.5}, {-5.5, -4.5}});
        line({{-4.5, -1.5}, {-4.5, 5.5}, {4.5, 5.5}, {4.5, -1.5}});
        line({{-1.5, 1.5}, {1.5, 1.5}});
        break;
    case PanelGlyph::Other: // a sheet with a folded corner
        line({{-4.5, -5.5}, {1.5, -5.5}, {4.5, -2.5}, {4.5, 5.5}, {-4.5, 5.5}, {-4.5, -5.5}});
        line({{1.5, -5.5}, {1.5, -2.5}, {4.5, -2.5}});
        break;
    case PanelGlyph::Back:
        line({{1.5, -4}, {-2.5, 0}, {1.5, 4}});
        break;
    case PanelGlyph::Up:
        line({{-4, -1}, {0, -5}, {4, -1}});
        line({{0, -5}, {0, 5}});
        break;
    case PanelGlyph::Ascending:
        line({{-3, 1.5}, {0, -1.5}, {3, 1.5}});
        break;
    case PanelGlyph::Descending:
        line({{-3, -1.5}, {0, 1.5}, {3, -1.5}});
        break;
    }
    return path;
}

} // namespace

PanelGlyph::PanelGlyph(QQuickItem* parent)
    : PaintedItem(parent)
    , m_color(Neon::inkDim) {
    setImplicitSize(16, 16);
}

void PanelGlyph::paint(QPainter& painter) const {
    painter.translate(width() / 2, height() / 2);
    painter.strokePath(lines(m_sign), QPen(m_color, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

} // namespace velmora
