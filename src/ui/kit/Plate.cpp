#include "ui/kit/Plate.h"

#include "ui/kit/Neon.h"

#include <QPainter>
#include <QQmlEngine>

#include <algorithm>

namespace velmora {

void Plate::componentComplete() {
    PaintedItem::componentComplete();
    if (QQmlEngine* const engine = qmlEngine(this)) {
        m_neon = engine->singletonInstance<Neon*>(qmlTypeId("Velmora", 1, 0, "Neon"));
        connect(m_neon, &Neon::contrastChanged, this, &Plate::changed);
    }
}

void Plate::paint(QPainter& painter) const {
    const double maxRadius = std::min(width(), height()) / 2;
    const double radius = m_capsule ? maxRadius : std::min(m_radius, maxRadius);
    const QRectF box(0, 0, width(), height());
    painter.setPen(Qt::NoPen);
    painter.setBrush(Neon::faded(m_fill, m_fillOpacity));
    painter.drawRoundedRect(box, radius, radius);
    const double min = m_neon != nullptr && m_borderOpacity > 0 ? m_neon->minBorderOpacity() : 0;
    painter.setPen(QPen(Neon::faded(m_border, std::max(m_borderOpacity, min)), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
}

} // namespace velmora
