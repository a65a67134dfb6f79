#include "ui/kit/PaintedLogo.h"

#include "ui/kit/Glow.h"
#include "ui/kit/Neon.h"

#include <QPainter>

namespace velmora {

namespace {

constexpr double shadowPerHeight = 0.18;
constexpr double shadowOpacity = 0.35;

} // namespace

PaintedLogo::PaintedLogo(QQuickItem* parent)
    : PaintedItem(parent) {
    connect(this, &PaintedLogo::changed, this, [this] { m_image = QImage(m_source); });
}

double PaintedLogo::shadowRadius() const {
    return height() * shadowPerHeight;
}

QMarginsF PaintedLogo::overflow() const {
    const double reach = blurReach(shadowRadius());
    return {reach, reach, reach, reach};
}

void PaintedLogo::paint(QPainter& painter) const {
    if (m_image.isNull()) {
        return;
    }
    const QSizeF fitted = m_image.size().scaled(size().toSize(), Qt::KeepAspectRatio);
    const QRectF box(QPointF((width() - fitted.width()) / 2, (height() - fitted.height()) / 2), fitted);
    const QSize pixels = (fitted * painter.deviceTransform().m11()).toSize();
    const QImage scaled = m_image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    drawBlurred(painter, box, shadowRadius(), Neon::faded(Neon::violet, shadowOpacity), 1,
                [&](QPainter& target) { target.drawImage(box, scaled); });
    painter.drawImage(box, scaled);
}

} // namespace velmora
