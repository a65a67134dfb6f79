#include "ui/content/SlashEmblem.h"

#include "ui/content/EmblemShapes.h"
#include "ui/kit/Neon.h"

#include <QPainter>

#include <cmath>

namespace velmora {

SlashEmblem::SlashEmblem(QQuickItem* parent)
    : PaintedItem(parent)
    , m_tint(Neon::alert) {}

void SlashEmblem::measure() {
    const QRectF box = waveformWithSlash(m_size).boundingRect();
    setImplicitSize(std::ceil(box.width()), std::ceil(box.height()));
}

void SlashEmblem::paint(QPainter& painter) const {
    painter.translate(width() / 2, height() / 2);
    painter.fillPath(waveformWithSlash(m_size), m_tint);
}

} // namespace velmora
