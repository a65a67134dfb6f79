#include "ui/kit/PaintedText.h"

#include "ui/kit/Neon.h"

#include <QPainter>

#include <cmath>

namespace velmora {

PaintedText::PaintedText(QQuickItem* parent)
    : PaintedItem(parent)
    , m_color(Neon::ink) {}

void PaintedText::measure() {
    setImplicitSize(std::ceil(m_style.width(m_text)), std::ceil(m_style.lineHeight()));
}

QMarginsF PaintedText::overflow() const {
    const double room = m_style.size / 2.0;
    return {room, room, room, room};
}

QString PaintedText::shownText() const {
    return m_style.elided(m_text, width(), m_keepsEnd ? Qt::ElideMiddle : Qt::ElideRight);
}

void PaintedText::paint(QPainter& painter) const {
    painter.setFont(m_style.font());
    painter.setPen(m_color);
    painter.drawText(QPointF(0, m_style.baseline()), shownText());
}

} // namespace velmora
