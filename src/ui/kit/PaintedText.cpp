#include "ui/kit/PaintedText.h"

#include "ui/kit/Neon.h"

#include <QPainter>

#include <cmath>

namespace velmora {

PaintedText::PaintedText(QQuickItem* parent)
    : PaintedItem(parent)
    , m_color(Neon::ink) {}

QMarginsF PaintedText::overflow() const {
    const double room = m_style.size / 2.0;
    return {room, room, room, room};
}

void PaintedText::setText(const QString& text) {
    if (m_text != text) {
        m_text = text;
        announce();
    }
}

void PaintedText::setColor(const QColor& color) {
    if (m_color != color) {
        m_color = color;
        announce();
    }
}

void PaintedText::setSize(int points) {
    TextStyle style = m_style;
    style.size = points;
    setStyle(style);
}

void PaintedText::setWeight(int weight) {
    TextStyle style = m_style;
    style.weight = static_cast<QFont::Weight>(weight);
    setStyle(style);
}

void PaintedText::setTracking(double points) {
    TextStyle style = m_style;
    style.tracking = points;
    setStyle(style);
}

void PaintedText::setMonospaced(bool monospaced) {
    TextStyle style = m_style;
    style.monospaced = monospaced;
    setStyle(style);
}

void PaintedText::setStyle(const TextStyle& style) {
    if (m_style != style) {
        m_style = style;
        announce();
    }
}

void PaintedText::announce() {
    setImplicitSize(std::ceil(m_style.width(m_text)), std::ceil(m_style.lineHeight()));
    repaint();
    emit changed();
}

void PaintedText::paint(QPainter& painter) const {
    painter.setFont(m_style.font());
    painter.setPen(m_color);
    painter.drawText(QPointF(0, m_style.baseline()), m_style.elided(m_text, width()));
}

} // namespace velmora
