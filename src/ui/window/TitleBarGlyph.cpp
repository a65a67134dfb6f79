#include "ui/window/TitleBarGlyph.h"

#include "ui/kit/Neon.h"

#include <QPainter>
#include <QPainterPath>

namespace velmora {

namespace {

/// The sign in a box from (-4.5, -4.5) to (4.5, 4.5). Horizontal and vertical lines run through the middles
/// of pixels, so that they are sharp.
QPainterPath outline(TitleBarGlyph::Sign sign) {
    QPainterPath path;
    const auto line = [&path](double x1, double y1, double x2, double y2) {
        path.moveTo(x1, y1);
        path.lineTo(x2, y2);
    };
    switch (sign) {
    case TitleBarGlyph::Menu:
        line(-4.5, -3.5, 4.5, -3.5);
        line(-4.5, 0.5, 4.5, 0.5);
        line(-4.5, 4.5, 4.5, 4.5);
        break;
    case TitleBarGlyph::Minimize:
        line(-4.5, 0.5, 4.5, 0.5);
        break;
    case TitleBarGlyph::Maximize:
        path.addRoundedRect(QRectF(-4.5, -4.5, 9, 9), 1.5, 1.5);
        break;
    case TitleBarGlyph::Restore:
        path.addRoundedRect(QRectF(-4.5, -2.5, 7, 7), 1.5, 1.5);
        line(-1.5, -4.5, 3, -4.5);
        path.quadTo(4.5, -4.5, 4.5, -3);
        path.lineTo(4.5, 1.5);
        break;
    case TitleBarGlyph::Close:
        line(-4, -4, 4, 4);
        line(-4, 4, 4, -4);
        break;
    }
    return path;
}

} // namespace

TitleBarGlyph::TitleBarGlyph(QQuickItem* parent)
    : PaintedItem(parent)
    , m_color(Neon::inkDim) {}

void TitleBarGlyph::paint(QPainter& painter) const {
    painter.translate(width() / 2, height() / 2);
    painter.strokePath(outline(m_sign), QPen(m_color, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

} // namespace velmora
