#include "ui/content/Card.h"

#include "ui/kit/Glow.h"
#include "ui/kit/Neon.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace velmora {

namespace {

constexpr double cornerRadius = 18;
constexpr double fillOpacity = 0.42;

QPainterPath rounded(const QRectF& box, double radius) {
    QPainterPath path;
    path.addRoundedRect(box, radius, radius);
    return path;
}

} // namespace

QMarginsF Card::overflow() const {
    const double reach = blurReach(either(14, 26));
    return {reach, reach, reach, reach};
}

void Card::paint(QPainter& painter) const {
    const QRectF box(0, 0, width(), height());
    const QPainterPath shape = rounded(box, cornerRadius);

    // The shadow is a light around the card, not below it: the fill is translucent.
    QPainterPath outside;
    outside.addRect(box.marginsAdded(overflow()));
    painter.save();
    painter.setClipPath(outside.subtracted(shape));
    drawBlurred(painter, box, either(14, 26), Neon::faded(Neon::violet, either(0.12, 0.35)), 1,
                [&shape](QPainter& target) { target.fillPath(shape, Qt::black); });
    painter.restore();

    painter.fillPath(shape, Neon::faded(Qt::black, fillOpacity));

    const double opacity = std::max(either(0.35, 0.95), m_minBorderOpacity);
    const double line = either(1, 2);
    QLinearGradient gradient(box.topLeft(), box.bottomRight());
    gradient.setColorAt(0, Neon::faded(Neon::violet, opacity));
    gradient.setColorAt(1, Neon::faded(Neon::indigo, opacity));
    painter.strokePath(
        rounded(box.adjusted(line / 2, line / 2, -line / 2, -line / 2), cornerRadius - line / 2),
        QPen(gradient, line));
}

} // namespace velmora
