#include "ui/kit/PaintedGlowText.h"

#include "ui/kit/Glow.h"
#include "ui/kit/Neon.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace velmora {

namespace {

constexpr double blurPerSize = 0.16;
constexpr double trackingPerSize = 0.03;
constexpr double glowOpacity = 0.85;
constexpr int glowCopies = 2;

} // namespace

PaintedGlowText::PaintedGlowText(QQuickItem* parent)
    : PaintedItem(parent)
    , m_tint(Neon::violet) {}

void PaintedGlowText::setText(const QString& text) {
    if (m_text != text) {
        m_text = text;
        announce();
    }
}

void PaintedGlowText::setSize(int points) {
    if (m_size != points) {
        m_size = points;
        announce();
    }
}

void PaintedGlowText::setTint(const QColor& tint) {
    if (m_tint != tint) {
        m_tint = tint;
        announce();
    }
}

double PaintedGlowText::blurRadius() const {
    return m_size * blurPerSize;
}

TextStyle PaintedGlowText::style() const {
    return {.size = m_size, .weight = QFont::Bold, .tracking = m_size * trackingPerSize};
}

QMarginsF PaintedGlowText::overflow() const {
    const double reach = blurReach(blurRadius());
    return {reach, reach, reach, reach};
}

void PaintedGlowText::announce() {
    setImplicitSize(std::ceil(style().width(m_text)), std::ceil(style().lineHeight()));
    repaint();
    emit changed();
}

void PaintedGlowText::paint(QPainter& painter) const {
    const TextStyle style = this->style();
    const QRectF box(0, 0, style.width(m_text), style.lineHeight());
    const QPointF start(0, style.baseline());
    // As outlines: blurring may happen at a coarse resolution, on whose pixels letters would be moved to
    // fall.
    QPainterPath letters;
    letters.addText(start, style.font(), m_text);
    drawBlurred(painter, box, blurRadius(), Neon::faded(m_tint, glowOpacity), glowCopies,
                [&letters](QPainter& target) { target.fillPath(letters, Qt::black); });
    QLinearGradient gradient(box.topLeft(), box.topRight());
    gradient.setColorAt(0, Neon::violet);
    gradient.setColorAt(1, Neon::indigo);
    painter.setFont(style.font());
    painter.setPen(QPen(gradient, 1));
    painter.drawText(start, m_text);
}

} // namespace velmora
