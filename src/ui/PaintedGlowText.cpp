#include "ui/PaintedGlowText.h"

#include "ui/Glow.h"
#include "ui/Neon.h"

#include <QLinearGradient>
#include <QPainter>

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
    const auto letters = [&](QPainter& target) {
        target.setFont(style.font());
        target.drawText(QPointF(0, style.baseline()), m_text);
    };
    drawBlurred(painter, box, blurRadius(), Neon::faded(m_tint, glowOpacity), glowCopies, letters);
    QLinearGradient gradient(box.topLeft(), box.topRight());
    gradient.setColorAt(0, Neon::violet);
    gradient.setColorAt(1, Neon::indigo);
    painter.setPen(QPen(gradient, 1));
    letters(painter);
}

} // namespace velmora
