#include "ui/content/DropEmblem.h"

#include "ui/content/EmblemShapes.h"
#include "ui/kit/Neon.h"

#include <QLinearGradient>
#include <QPainter>

#include <numbers>

namespace velmora {

namespace {

constexpr double outerRadius = 48;
constexpr double outerLine = 1.5;
constexpr int outerDashes = 44;
constexpr double dashShare = 0.55; ///< of a dash and its gap
constexpr double innerRadius = 37;
constexpr double symbolSize = 30;

/// How far the emblem reaches beyond its item, in points, while the spring that magnifies it overshoots.
constexpr double room = 10;

QPen dashedPen() {
    const double period = 2 * std::numbers::pi * outerRadius / outerDashes / outerLine; // in line widths
    QPen pen(Neon::faded(Neon::violet, 0.28), outerLine, Qt::CustomDashLine, Qt::FlatCap);
    pen.setDashPattern({period * dashShare, period * (1 - dashShare)});
    return pen;
}

} // namespace

DropEmblem::DropEmblem(QQuickItem* parent)
    : PaintedItem(parent) {
    setImplicitSize(2 * outerRadius, 2 * outerRadius);
}

QMarginsF DropEmblem::overflow() const {
    return {room, room, room, room};
}

void DropEmblem::paint(QPainter& painter) const {
    painter.translate(width() / 2, height() / 2);
    painter.scale(m_magnification, m_magnification);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(dashedPen());
    painter.drawEllipse(QPointF(), outerRadius, outerRadius);
    painter.setPen(QPen(Neon::faded(Neon::indigo, 0.22), 1));
    painter.drawEllipse(QPointF(), innerRadius, innerRadius);

    const QPainterPath symbol = waveformWithPlus(symbolSize);
    const QRectF box = symbol.boundingRect();
    QLinearGradient gradient(box.topLeft(), box.bottomLeft());
    gradient.setColorAt(0, Neon::violet);
    gradient.setColorAt(1, Neon::indigo);
    painter.fillPath(symbol, gradient);
}

} // namespace velmora
