#include "ui/window/StripGlyph.h"

#include "ui/kit/Neon.h"

#include <QPainter>
#include <QPainterPath>

namespace velmora {

namespace {

/// The sign in a box from (-4.5, -4.5) to (4.5, 4.5). Level and upright lines run through the middles of
/// pixels.
QPainterPath outline(StripGlyph::Sign sign) {
    QPainterPath path;
    const auto line = [&path](double x1, double y1, double x2, double y2) {
        path.moveTo(x1, y1);
        path.lineTo(x2, y2);
    };
    switch (sign) {
    case StripGlyph::Menu:
        line(-4.5, -3.5, 4.5, -3.5);
        line(-4.5, 0.5, 4.5, 0.5);
        line(-4.5, 4.5, 4.5, 4.5);
        break;
    case StripGlyph::Minimize:
        line(-4.5, 0.5, 4.5, 0.5);
        break;
    case StripGlyph::Maximize:
        path.addRoundedRect(QRectF(-4.5, -4.5, 9, 9), 1.5, 1.5);
        break;
    case StripGlyph::Restore:
        path.addRoundedRect(QRectF(-4.5, -2.5, 7, 7), 1.5, 1.5);
        line(-1.5, -4.5, 3, -4.5);
        path.quadTo(4.5, -4.5, 4.5, -3);
        path.lineTo(4.5, 1.5);
        break;
    case StripGlyph::Close:
        line(-4, -4, 4, 4);
        line(-4, 4, 4, -4);
        break;
    }
    return path;
}

} // namespace

StripGlyph::StripGlyph(QQuickItem* parent)
    : PaintedItem(parent)
    , m_color(Neon::inkDim) {
    connect(this, &StripGlyph::changed, this, &StripGlyph::repaint);
}

void StripGlyph::paint(QPainter& painter) const {
    painter.translate(width() / 2, height() / 2);
    painter.strokePath(outline(m_sign), QPen(m_color, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

} // namespace velmora
