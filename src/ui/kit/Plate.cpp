#include "ui/kit/Plate.h"

#include "ui/kit/Neon.h"

#include <QPainter>

#include <algorithm>

namespace velmora {

void Plate::paint(QPainter& painter) const {
    const double maxRadius = std::min(width(), height()) / 2;
    const double radius = m_capsule ? maxRadius : std::min(m_radius, maxRadius);
    const QRectF box(0, 0, width(), height());
    painter.setPen(Qt::NoPen);
    painter.setBrush(Neon::faded(m_fill, m_fillOpacity));
    painter.drawRoundedRect(box, radius, radius);
    painter.setPen(QPen(Neon::faded(m_border, m_borderOpacity), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
}

} // namespace velmora
