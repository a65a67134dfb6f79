#include "ui/kit/PaintedGlowText.h"

#include "ui/kit/DigitCells.h"
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

void PaintedGlowText::measure() {
    setImplicitSize(std::ceil(inDigitCells(m_text, style()).width), std::ceil(style().lineHeight()));
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

void PaintedGlowText::paint(QPainter& painter) const {
    const TextStyle style = this->style();
    const QFont font = style.font();
    const CellText placed = inDigitCells(m_text, style);
    const QRectF box(0, 0, placed.width, style.lineHeight());
    // The glow is made from outlines: at its coarse resolution, a painter would move letters to whole pixels.
    QPainterPath letters;
    for (const TextPiece& piece : placed.pieces) {
        letters.addText({piece.x, style.baseline()}, font, piece.text);
    }
    drawBlurred(painter, box, blurRadius(), Neon::faded(m_tint, glowOpacity), glowCopies,
                [&letters](QPainter& target) { target.fillPath(letters, Qt::black); });
    QLinearGradient gradient(box.topLeft(), box.topRight());
    gradient.setColorAt(0, Neon::violet);
    gradient.setColorAt(1, Neon::indigo);
    painter.setFont(font);
    painter.setPen(QPen(gradient, 1));
    for (const TextPiece& piece : placed.pieces) {
        painter.drawText(QPointF(piece.x, style.baseline()), piece.text);
    }
}

} // namespace velmora
